"""Problem files with known results."""

E, G, A, IY, IZ, J = 2.1e8, 8.1e7, 0.02, 3e-5, 8e-5, 6e-5
LENGTH = 4.0

# A cantilever along x in space with a load at its end, and gravity-like load along the span.
CANTILEVER = f"""problem type: 3d
# A cantilever
units_names
  kN-m kN m kPa 1 1
end
units_mesh m
units_mat_and_load kN-m
units_res kN-m
mesh dimension = 3 elemtype Linear nnode = 2
coordinates
1 0 0 0
2 {LENGTH} 0 0
end coordinates
elements
1 1 2 1
end elements
materials
1 E = {E} G = {G} A = {A} Iy = {IY} Iz = {IZ} J = {J}
end materials
constraints
1 111111 0 0 0 0 0 0
end constraints
nodal_point_loads
2 10 2 3 4 5 6
end nodal_point_loads
"""

PLANE = f"""problem type: 2d
mesh dimension = 2 elemtype Linear nnode = 2
coordinates
1 0 0
2 {LENGTH} 0
end coordinates
elements
7 1 2 1
end elements
materials
1 E = {E} A = {A} Iz = {IZ}
end materials
constraints
1 111 0 0 0
end constraints
global_pressure_loads
7 0 -12
end global_pressure_loads
"""

# A square of two shells that is pulled along x.
SHELLS = """problem type: 3d
mesh dimension = 3 elemtype Triangle nnode = 3
coordinates
1 0 0 0
2 1 0 0
3 1 1 0
4 0 1 0
end coordinates
elements
1 1 2 3 1
2 1 3 4 1
end elements
materials
1 E = 1000 G = 500 nu = 0 t = 0.1
end materials
constraints
1 111111 0 0 0 0 0 0
4 101111 0 0 0 0 0 0
2 001111 0 0 0 0 0 0
3 001111 0 0 0 0 0 0
end constraints
nodal_point_loads
2 5 0 0 0 0 0
3 5 0 0 0 0 0
end nodal_point_loads
"""

# A tetrahedron that is pulled along z at its tip.
SOLID = """problem type: 3d
mesh dimension = 3 elemtype Tetrahedra nnode = 4
coordinates
1 0 0 0
2 1 0 0
3 0 1 0
4 0 0 1
end coordinates
elements
1 1 2 3 4 1
end elements
materials
1 E = 1000 nu = 0
end materials
constraints
1 111 0 0 0
2 111 0 0 0
3 111 0 0 0
end constraints
nodal_point_loads
4 0 0 6
end nodal_point_loads
"""

ALL = {"cantilever": CANTILEVER, "plane": PLANE, "shells": SHELLS, "solid": SOLID}


def write_cases(folder, text):
    """A file of load cases of a model: A as in the file, B twice that, and the envelope E of both."""
    (folder / "m.dat").write_text(text)
    (folder / "m.cases").write_text(
        'model = "m.dat"\n[cases.A]\nfrom_model = true\n[combinations]\nB = { A = 2 }\n[envelopes]\nE = ["*"]\n'
    )
    return folder / "m.cases"
