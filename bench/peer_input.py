"""Writes a model of generate_models.py as an input file of CalculiX, the free finite element
program that whole runs are compared with. Frames become its two-node user elements U1, which
like ours have six unknowns a node; shells its S3 and S6, solids its C3D4 and C3D10."""

import dataclasses

TYPES = {"Linear nnode = 2": "U1", "Triangle nnode = 3": "S3", "Triangle nnode = 6": "S6",
         "Tetrahedra nnode = 4": "C3D4", "Tetrahedra nnode = 10": "C3D10"}
POISSON_OF_FRAMES = 0.2
PLANE_UNKNOWNS = (1, 2, 6)


def number_of(text, name):
    """The number after `name = ` in the text of a material; None when it has none."""
    words = text.split()
    return float(words[words.index(name) + 2]) if name in words else None


def rectangle(text):
    """Area and moments of inertia about y and z."""
    y, z = number_of(text, "widthY"), number_of(text, "widthZ")
    if y is None:
        area, inertia = number_of(text, "A"), number_of(text, "Iz")
        return area, inertia, inertia
    return y * z, y * z ** 3 / 12.0, z * y ** 3 / 12.0


def write_section(model, material, element, out):
    text = model.materials[material - 1]
    out.write(f"*MATERIAL,NAME=M{material}\n*ELASTIC\n"
              f"{number_of(text, 'E'):g},{number_of(text, 'nu') or POISSON_OF_FRAMES:g}\n")
    place = f"ELSET=E{material},MATERIAL=M{material}"
    if element in ("S3", "S6"):
        out.write(f"*SHELL SECTION,{place}\n{number_of(text, 't'):g}\n")
    elif element != "U1":
        out.write(f"*SOLID SECTION,{place}\n")
    else:
        area, inertia_y, inertia_z = rectangle(text)
        out.write(f"*BEAM SECTION,{place},SECTION=GENERAL\n"
                  f"{area:g},{inertia_y:g},0.,{inertia_z:g},0.8333\n{direction(model, material)}\n")


def direction(model, material):
    """A direction across the beams of a material."""
    if model.header == "2d":
        return "0.,0.,1."
    for nodes, number in model.elements:
        if number == material:
            a, b = (model.coordinates[k - 1] for k in nodes)
            return "0.,1.,0." if a[1] == b[1] else "1.,0.,0."
    return "0.,1.,0."


def with_middles(model):
    """The model after `ConvertTo6Nodes`: a node in the middle of every edge, which has the supports
    that both its ends have. Loads remain on the corners."""
    coordinates, middles = list(model.coordinates), {}

    def middle(a, b):
        edge = min(a, b), max(a, b)
        if edge not in middles:
            coordinates.append(tuple(0.5 * (x + y) for x, y in zip(*(coordinates[k - 1] for k in edge))))
            middles[edge] = len(coordinates)
        return middles[edge]

    elements = [((a, b, c, middle(a, b), middle(b, c), middle(c, a)), material)
                for (a, b, c), material in model.elements]
    flags, none = dict(model.supports), "000000"
    supports = list(model.supports)
    for (a, b), node in middles.items():
        both = "".join(min(pair) for pair in zip(flags.get(a, none), flags.get(b, none)))
        if both != none:
            supports.append((node, both))
    return dataclasses.replace(model, element="Triangle nnode = 6", coordinates=coordinates,
                               elements=elements, supports=supports)


def write(model, solver, out):
    if "ConvertTo6Nodes" in model.settings:
        model = with_middles(model)
    element, plane = TYPES[model.element], model.header == "2d"
    unknowns = PLANE_UNKNOWNS if plane else range(1, 7)
    out.write("*NODE,NSET=NALL\n")
    for number, place in enumerate(model.coordinates, 1):
        out.write(f"{number},{','.join(f'{x:.10g}' for x in place)}{',0.' if plane else ''}\n")
    if element == "U1":
        out.write("*USER ELEMENT,TYPE=U1,NODES=2,INTEGRATION POINTS=2,MAXDOF=6\n")
    for material in range(1, len(model.materials) + 1):
        out.write(f"*ELEMENT,TYPE={element},ELSET=E{material}\n")
        out.writelines(f"{number},{','.join(map(str, nodes))}\n"
                       for number, (nodes, of) in enumerate(model.elements, 1) if of == material)
    for material in range(1, len(model.materials) + 1):
        write_section(model, material, element, out)
    out.write("*BOUNDARY\n")
    for node, flags in model.supports:
        out.writelines(f"{node},{unknown}\n" for unknown, flag in zip(unknowns, flags) if flag == "1")
    if plane:
        out.writelines(f"{node},3,5\n" for node in range(1, len(model.coordinates) + 1))
    out.write(f"*STEP\n*STATIC,SOLVER={solver}\n*CLOAD\n")
    for node, load in model.loads:
        out.writelines(f"{node},{unknown},{value:.10g}\n"
                       for unknown, value in zip(unknowns, load) if value)
    out.write("*NODE FILE\nU,RF\n")
    if element != "U1":
        out.write("*EL FILE\nS\n")
    out.write("*END STEP\n")
