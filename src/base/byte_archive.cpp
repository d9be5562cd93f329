#include "base/byte_archive.h"

#include "base/errorwriter.h"

namespace morlen {

void RefuseBytes()
{
  Fatal("error: the stored data are damaged, or of another version of the program\n");
}

void BytePutter::Append(const void* from, std::size_t size)
{
  if (size == 0)
    return;
  const std::size_t end = bytes.size();
  bytes.resize(end + size);
  std::memcpy(bytes.data() + end, from, size);
}

}  // namespace morlen
