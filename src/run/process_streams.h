#pragma once

namespace morlen {

/// Makes the process safe to write files.
///
/// A closed standard stream is opened in a mode that fails. Otherwise the next opened file would
/// get its descriptor and receive its messages. A write to a closed pipe or beyond a size limit
/// fails, instead of ending the process by a signal.
void ProtectStreams();

}  // namespace morlen
