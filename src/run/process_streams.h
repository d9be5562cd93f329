#pragma once

namespace morlen {

/// Makes the process safe to write files: a standard stream that is closed becomes one that
/// fails, so that no file opened later takes its place and receives messages; and a write
/// to a closed pipe or beyond a limit fails where it stands instead of ending the process.
void ProtectStreams();

}  // namespace morlen
