#pragma once

#include <functional>
#include <vector>

#include "mpi/bytes.h"
#include "mpi/ranks.h"
#include "mpi/worker.h"

namespace morlen::mpi {

/// The state of the other ranks, as the first sees them. It owns no object of a model, so that it
/// may outlive them: it is static, and an error ends the process by exit.
struct OtherRanks
{
  OtherRanks() = default;
  OtherRanks(const OtherRanks&) = delete;
  OtherRanks& operator=(const OtherRanks&) = delete;
  /// Lets the other ranks end, and ends the library of messages. When one of them is at work
  /// together with this one, neither is possible: the status of the process then has to make the
  /// launcher end all.
  ~OtherRanks();

  int count = RankCount();  ///< with the first
  /// Ranks from 1 up to this one, without it, have got the last command,
  int ordered = 1;
  /// and up to this one their answers have been received.
  int answered = 1;
  bool together = false;  ///< true when the last command is one of all ranks together
};

/// All ranks, with the work of the first.
class Team
{
public:
  /// Borrows the others.
  explicit Team(OtherRanks& others_) : others(others_) {}

  int Count() const { return others.count; }

  /// Writes the data of a command for one rank.
  using Write = std::function<void(int rank, ByteWriter&)>;
  /// Reads the answer of one rank.
  using Read = std::function<void(int rank, ByteReader&)>;

  /// Lets all ranks carry out a command, this one too, and reads the answers in the order of the
  /// ranks. Fatal when a rank has reported an error.
  void Order(Command command, const Write& write, const Read& read);

private:
  void DoOwn(Command command, const Write& write, const Read& read);

  OtherRanks& others;
  Worker own;
};

}  // namespace morlen::mpi
