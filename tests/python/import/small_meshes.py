"""Small meshes as texts, and their maps."""

# Two tetrahedra on each other, a triangle of the second twice (in two groups), a loose node.
SOLID = """$MeshFormat
2.2 0 8
$EndMeshFormat
$PhysicalNames
6
0 1 "tip"
2 2 "foot"
2 3 "top"
2 4 "also top"
3 5 "body"
2 6 "inner"
$EndPhysicalNames
$Nodes
6
2 0 0 0
4 1 0 0
6 0 1 0
8 0 0 1
10 1 1 1
12 9 9 9
$EndNodes
$Elements
7
1 15 2 1 1 10
2 2 2 2 1 2 4 6
3 2 2 3 1 10 8 4
4 2 2 4 1 4 8 10
5 2 2 6 1 4 6 8
6 4 2 5 1 2 4 6 8
7 4 2 5 1 4 6 8 10
$EndElements
"""
SOLID_MAP = """
units = { length = "mm", force = "N" }
[materials.steel]
groups = ["body"]
E = 2.1e5
nu = 0.3
[supports.clamp]
groups = ["foot"]
flags = "111"
[loads.top]
groups = ["top"]
pressure = 6
"""

# Two triangles (1 2 3, 1 3 4), seen from above counter-clockwise, a beam on their common edge and a column under node 1.
SHELL = """$MeshFormat
2.2 0 8
$EndMeshFormat
$PhysicalNames
7
0 1 "foot"
0 2 "tip"
1 3 "rib"
1 4 "column"
1 5 "edge"
2 6 "slab"
1 7 "loose"
$EndPhysicalNames
$Nodes
5
1 0 0 1
2 2 0 1
3 2 2 1
4 0 2 1
5 0 0 0
$EndNodes
$Elements
9
1 15 2 1 1 5
2 15 2 2 1 3
3 1 2 3 1 1 3
4 1 2 4 1 5 1
5 1 2 5 1 3 2
6 1 2 5 1 3 4
7 2 2 6 1 1 2 3
8 2 2 6 1 1 3 4
9 1 2 7 1 2 4
$EndElements
"""
SHELL_MAP = """
units = { length = "m", force = "kN" }
[settings]
ShellFormulation = "Refined"
[materials.concrete]
groups = ["slab"]
E = 3e7
nu = 0.2
G = 1.25e7
t = 0.2
[materials.bars]
groups = ["rib", "column"]
E = 3e7
G = 1.25e7
widthY = 0.3
widthZ = 0.3
[supports.foot]
groups = ["foot"]
flags = "111111"
"""
