#include "variants/base_models.h"

namespace morlen::variants {

namespace {

constexpr const char* kFrame = R"(# a portal frame and a beam at right angles to it
problem type: 3d
units_names
kN-m kN m kPa 1000.0 1.0
N-mm N mm MPa 1.0 0.001
kN-cm kN cm kN/cm2 1000.0 0.01
end units_names
units_mesh mm
units_mat_and_load N-mm
units_res kN-m
mesh dimension = 3 elemtype Linear nnode = 2
coordinates
1 0.0 0.0 0.0
2 0.0 0.0 4500.0
3 6000.0 0.0 4500.0
4 6000.0 0.0 0.0
5 6000.0 5000.0 4500.0
end coordinates
elements
1 1 2 1
2 2 3 2
3 4 3 1 Weight=60.0 units=kN-m
end elements
mesh dimension = 3 elemtype Linear nnode = 2
coordinates
end coordinates
elements
101 3 5 3
end elements
materials
1 E=210000.0 G=81000.0 A=7808.0 Iy=20030000.0 Iz=56960000.0 J=593000.0 Weight=0.0000785
2 units=kN-cm E=3300.0 G=1375.0 widthY=30.0 widthZ=50.0
3 E=210000.0 G=81000.0 A=9780.0 Iy=28430000.0 Iz=80910000.0 J=764000.0
end materials
constraints
1 111111 0.0 0.0 0.0 0.0 0.0 0.0
4 111222 0.0 0.0 -10.0 5000000000.0 6000000000.0 7000000000.0 units=N-mm
5 111000 0.0 0.0 0.0 0.0 0.0 0.0 Euler1=0.3
end constraints
nodal_point_loads
2 10000.0 0.0 0.0 0.0 500000.0 0.0
3 0.0 5.5 0.0 0.0 0.0 2.5 units=kN-m
5 0.0 0.0 -1000.0 0.0 0.0 0.0
end nodal_point_loads
rotules
5 hinge
4 hinge
end rotules
elem_rotules
2 10
3 11
end elem_rotules
local_pressure_loads
1 0.0 0.5 0.25
2 0.0 0.1 -0.2 0.3
101 0.0 0.0 -2.5 units=kN-m
end local_pressure_loads
global_pressure_loads
2 0.0 0.0 -12.5 units=kN-m
101 0.0 0.5 -6.5
end global_pressure_loads
global_projected_pressure_loads
2 0.0 0.0 -3.5
101 0.0 0.0 -3.0 units=kN-m
end global_projected_pressure_loads
temperature_loads
1 0.000012 30.0
2 0.00001 -20.0
end temperature_loads
NumOfDivisions = 4
GravityDirection = 0.0 0.0 -1.0
Solver = SkyLine
)";

constexpr const char* kPlane = R"(# a column and a rafter
problem type: 2d
units_names
kN-m kN m kPa 1000.0 1.0
N-mm N mm MPa 1.0 0.001
end units_names
units_mesh mm
units_mat_and_load kN-m
units_res N-mm
mesh dimension = 2 elemtype Linear nnode = 2
coordinates
1 0.0 0.0
2 0.0 4500.5
3 4000.0 6500.0
4 8000.0 6500.0
end coordinates
elements
1 1 2 1
2 2 3 2
3 3 4 2 E=190.5 units=N-mm
end elements
materials
1 E=210000000.0 A=0.0078 Iz=0.0000569 Weight=78.5
2 units=N-mm E=210000.0 A=5380.0 Iz=83560000.0
end materials
constraints
1 111 0.0 0.0 0.0
3 020 0.0 850.5 0.0
4 110 0.0 -10.0 0.0 Euler1=0.3 units=N-mm
end constraints
rotules
4 hinge
end rotules
elem_rotules
2 10
end elem_rotules
nodal_point_loads
2 10.5 0.0 0.5
3 0.0 -20.5 0.0
end nodal_point_loads
local_pressure_loads
1 0.0 -0.5
2 0.0 1.5
end local_pressure_loads
global_pressure_loads
2 0.5 -12.5
3 0.0 -12.5 units=kN-m
end global_pressure_loads
global_projected_pressure_loads
2 0.0 -3.5
3 0.5 -3.5
end global_projected_pressure_loads
face_loads
2 0.5 -1.5
3 0.5 -2.5
end face_loads
temperature_loads
1 0.000012 30.5
2 0.000012 -20.5
end temperature_loads
NumOfDivisions = 3
GravityDirection = 0.0 -1.0 0.0
)";

constexpr const char* kShell = R"(# a plate of six-node triangles, clamped at one side
problem type: 3d
MainAndLocalStresses
ConvertTo6Nodes
CoplanarityAngle = 0.0001
DoSmoothing = 0.1
mesh dimension = 3 elemtype Triangle nnode = 3
coordinates
1 0.0 0.0 1.5
2 2.5 0.0 1.5
3 4.5 0.0 1.5
4 0.0 2.0 1.5
5 2.5 2.0 1.5
6 4.5 2.0 1.5
end coordinates
elements
1 1 2 5 1
2 1 5 4 1
3 2 3 6 2
4 2 6 5 2 t=0.3
end elements
materials
1 E=31000000.0 nu=0.2 G=12900000.0 t=0.22 Weight=25.0
2 Ex=31000000.0 Ey=31000000.0 nuXY=0.25 nuYX=0.25 Gxy=12900000.0 Gxz=12900000.0 Gyz=12900000.0 t=0.25
end materials
constraints
1 111111 0.0 0.0 -0.001 0.0 0.0 0.0
4 111111 0.0 0.0 0.0 0.0 0.0 0.0
end constraints
nodal_point_loads
3 0.0 0.0 -10.5 0.0 0.0 0.0
6 0.0 5.5 -10.5 0.0 2.5 0.0
end nodal_point_loads
local_pressure_loads
1 0.0 0.0 -5.5
2 0.0 0.0 -4.5
end local_pressure_loads
global_pressure_loads
3 0.5 0.0 -5.5
4 0.5 0.0 -4.5
end global_pressure_loads
global_projected_pressure_loads
1 0.0 0.0 -1.5
2 0.5 0.0 -1.5
end global_projected_pressure_loads
face_loads
3 1 12.5 0.5 0.25
4 0 0 -0.5
end face_loads
GravityDirection = 0.0 0.0 -1.0
)";

constexpr const char* kSolid = R"(# three tetrahedra on a foot
problem type: 3d
units_names
kN-m kN m kPa 1000.0 1.0
N-mm N mm MPa 1.0 0.001
end units_names
units_mesh mm
units_mat_and_load N-mm
units_res N-mm
mesh dimension = 3 elemtype Tetrahedra nnode = 4
coordinates
1 0.0 0.0 0.0
2 100.5 0.0 0.0
3 0.0 100.5 0.0
4 0.0 0.0 100.5
5 100.5 100.5 100.5
6 200.5 200.5 0.0
end coordinates
elements
1 1 2 3 4 1
2 2 3 4 5 2
3 2 3 5 6 1 nu=0.25
end elements
materials
1 E=210000.0 nu=0.3 Weight=0.000077
2 E=210000000.0 nu=0.3 units=kN-m
end materials
constraints
1 111 0.0 0.0 0.0
2 111 0.5 0.0 0.0
3 112 0.0 0.0 50000.5
end constraints
nodal_point_loads
4 0.0 100.5 -1000.5
5 0.0 0.5 -0.5 units=kN-m
end nodal_point_loads
local_pressure_loads
1 3 0.0 0.0 -5.5
2 1 0.5 0.0 -0.5
end local_pressure_loads
global_pressure_loads
3 -1 0.0 0.5 -0.25
2 0 5.5 0.0 -5.5
end global_pressure_loads
global_projected_pressure_loads
3 2 0.0 0.0 -5.5
1 3 0.5 0.0 -0.5
end global_projected_pressure_loads
face_loads
2 2 5.5 0.0 -0.5
3 1 0.5 0.5 0.5
end face_loads
GravityDirection = 0.0 0.0 -1.0
)";

}  // namespace

const std::array<BaseModel, 4>& BaseModels()
{
  static constexpr std::array<BaseModel, 4> kModels = {
      {{"frame", 6, kFrame}, {"plane", 3, kPlane}, {"shell", 6, kShell}, {"solid", 3, kSolid}}};
  return kModels;
}

}  // namespace morlen::variants
