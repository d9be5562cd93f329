#include "mpi/ranks.h"

#include <mpi.h>
#include <time.h>

#include <algorithm>
#include <cstdint>

namespace morlen::mpi {

namespace {

constexpr int kTag = 1;
/// The longest piece of a message.
constexpr std::size_t kPiece = std::size_t{1} << 30;

void Pause()
{
  constexpr timespec kPause = {.tv_sec = 0, .tv_nsec = 100'000};
  nanosleep(&kPause, nullptr);
}

}  // namespace

int OwnRank()
{
  int rank = 0;
  MPI_Comm_rank(MPI_COMM_WORLD, &rank);
  return rank;
}

int RankCount()
{
  int count = 1;
  MPI_Comm_size(MPI_COMM_WORLD, &count);
  return count;
}

void Send(int to, std::span<const std::byte> message)
{
  const auto size = static_cast<std::int64_t>(message.size());
  MPI_Send(&size, 1, MPI_INT64_T, to, kTag, MPI_COMM_WORLD);
  while (!message.empty()) {
    const auto piece = message.first(std::min(message.size(), kPiece));
    MPI_Send(piece.data(), static_cast<int>(piece.size()), MPI_BYTE, to, kTag, MPI_COMM_WORLD);
    message = message.subspan(piece.size());
  }
}

Bytes Receive(int from)
{
  std::int64_t size = 0;
  MPI_Recv(&size, 1, MPI_INT64_T, from, kTag, MPI_COMM_WORLD, MPI_STATUS_IGNORE);
  Bytes message(static_cast<std::size_t>(size));
  for (std::span<std::byte> rest = message; !rest.empty();) {
    const auto piece = rest.first(std::min(rest.size(), kPiece));
    MPI_Recv(piece.data(), static_cast<int>(piece.size()), MPI_BYTE, from, kTag, MPI_COMM_WORLD,
             MPI_STATUS_IGNORE);
    rest = rest.subspan(piece.size());
  }
  return message;
}

Bytes ReceiveLater(int from)
{
  for (int arrived = 0; !arrived;) {
    MPI_Iprobe(from, kTag, MPI_COMM_WORLD, &arrived, MPI_STATUS_IGNORE);
    if (!arrived)
      Pause();
  }
  return Receive(from);
}

}  // namespace morlen::mpi
