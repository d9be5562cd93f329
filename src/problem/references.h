#pragma once

namespace morlen {

class Project;

/// Refuses, by its name, what the elements refer to and the file does not give: nodes, and
/// materials of the kinds of elements that are analysed. Run once, when the whole file is read,
/// before anything follows a reference. Supports, loads and hinges are refused where they
/// are read.
void CheckReferences(const Project& project);

}  // namespace morlen
