#pragma once

#include <fstream>
#include <string>

namespace morlen {

/// Opens a file for writing; it is created or emptied. Fatal when that fails.
void OpenOutput(std::ofstream& file, const std::string& name);

/// Flushes and closes the file. Fatal when anything written to it has been lost, for example
/// because the disk is full.
void CloseOutput(std::ofstream& file);

}  // namespace morlen
