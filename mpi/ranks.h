#pragma once

#include <span>

#include "mpi/bytes.h"

namespace morlen::mpi {

/// The rank that reads, numbers and writes.
constexpr int kFirstRank = 0;

// Messages between two ranks of the process group (MPI_COMM_WORLD). A message may be longer than an
// int can count: it is sent in pieces.

int OwnRank();
int RankCount();

void Send(int to, std::span<const std::byte> message);
Bytes Receive(int from);
/// The same, for long waits: the processor is left to others meanwhile.
Bytes ReceiveLater(int from);

}  // namespace morlen::mpi
