"""morlen-import: problem files of morlen from the meshes of other programs."""
