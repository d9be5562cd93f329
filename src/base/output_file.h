#pragma once

#include <fstream>
#include <string>

namespace morlen {

/// Opens a file for writing, created or cut to nothing. Fatal when that fails.
void OpenOutput(std::ofstream& file, const std::string& name);

/// Writes what is still held back and closes the file. Fatal when anything that was written
/// to it has not arrived, on a full disk say.
void CloseOutput(std::ofstream& file);

}  // namespace morlen
