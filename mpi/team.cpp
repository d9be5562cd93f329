#include "mpi/team.h"

#include <mpi.h>

#include <string>

#include "base/errorwriter.h"
#include "mpi/ranks.h"

namespace morlen::mpi {

OtherRanks::~OtherRanks()
{
  if (together && answered < ordered)
    return;
  for (int rank = answered; rank < ordered; ++rank)
    Receive(rank);
  ByteWriter end;
  end.Put(Command::End);
  const Bytes message = end.Take();
  for (int rank = 1; rank < count; ++rank)
    Send(rank, message);
  MPI_Finalize();
}

void Team::DoOwn(Command command, const Write& write, const Read& read)
{
  ByteWriter data;
  write(kFirstRank, data);
  const Bytes message = data.Take();
  ByteReader in(message);
  ByteWriter out;
  own.Do(command, in, out);
  const Bytes answer = out.Take();
  ByteReader fromAnswer(answer);
  read(kFirstRank, fromAnswer);
}

void Team::Order(Command command, const Write& write, const Read& read)
{
  others.together = IsTogether(command);
  others.ordered = others.answered = 1;
  for (int rank = 1; rank < Count(); ++rank) {
    ByteWriter data;
    data.Put(command);
    write(rank, data);
    Send(rank, data.Take());
    others.ordered = rank + 1;
  }
  DoOwn(command, write, read);
  for (int rank = 1; rank < Count(); ++rank) {
    const Bytes answer = Receive(rank);
    others.answered = rank + 1;
    ByteReader in(answer);
    if (in.Get<bool>()) {
      read(rank, in);
      continue;
    }
    const std::string message = in.GetText();
    const std::string hint = in.GetText();
    if (!hint.empty())
      Explain(hint);
    Fatal(message);
  }
}

}  // namespace morlen::mpi
