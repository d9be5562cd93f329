#include "base/output_file.h"

#include "base/errorwriter.h"

namespace morlen {

void OpenOutput(std::ofstream& file, const std::string& name)
{
  file.open(name);
  if (!file)
    Fatal("can't open file ", name, "\n");
}

void CloseOutput(std::ofstream& file)
{
  file.close();
  if (!file)
    Fatal("error: Failed writing to disk. Probably the disk is full\n");
}

}  // namespace morlen
