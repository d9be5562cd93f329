#include "support/frame.h"

#include <cstdio>

namespace morlen {

namespace {

std::string Number(double value)
{
  char text[32];
  std::snprintf(text, sizeof text, " %.17g", value);
  return text;
}

std::string Number(int value)
{
  return " " + std::to_string(value);
}

std::string EulerItems(const std::optional<Vector3>& euler)
{
  std::string items;
  for (int i = 0; euler && i < 3; ++i)
    items += " Euler" + std::to_string(i + 1) + "=" + Number((*euler)[i]);
  return items;
}

std::string Numbers(const double* values, int count)
{
  std::string text;
  for (int i = 0; i < count; ++i)
    text += Number(values[i]);
  return text;
}

}  // namespace

std::string NodeRecords(const Frame& frame)
{
  std::string lines;
  for (std::size_t i = 0; i < frame.nodes.size(); ++i)
    lines += std::to_string(i + 1) + Numbers(frame.nodes[i].data(), frame.space ? 3 : 2) + "\n";
  return lines;
}

std::string BeamRecords(const Frame& frame)
{
  std::string lines;
  for (std::size_t i = 0; i < frame.beams.size(); ++i) {
    const Frame::Beam& beam = frame.beams[i];
    lines += std::to_string(i + 1) + Number(beam.first) + Number(beam.second) +
             Number(beam.section) + "\n";
  }
  return lines;
}

std::string SectionRecords(const Frame& frame)
{
  std::string lines;
  for (std::size_t i = 0; i < frame.sections.size(); ++i) {
    const Frame::Section& s = frame.sections[i];
    lines += std::to_string(i + 1) + " E" + Number(s.E) + " G" + Number(s.G) + " A" + Number(s.A) +
             " Iy" + Number(s.Iy) + " Iz" + Number(s.Iz) + " J" + Number(s.J) +
             EulerItems(s.euler) + "\n";
  }
  return lines;
}

std::string SupportRecords(const Frame& frame, int components)
{
  std::string lines;
  for (const Frame::Support& support : frame.supports) {
    lines += std::to_string(support.node) + " ";
    for (int i = 0; i < components; ++i)
      lines += std::to_string(support.flags[i]);
    lines += Numbers(support.values.data(), components) + EulerItems(support.euler) + "\n";
  }
  return lines;
}

std::string LoadRecords(const Frame& frame, int components)
{
  std::string lines;
  for (const Frame::NodalLoad& load : frame.loads)
    lines += std::to_string(load.node) + Numbers(load.values.data(), components) + "\n";
  return lines;
}

std::string ProblemText(const Frame& frame, const std::string& settings)
{
  return ProblemParts{.header = frame.space ? "problem type 3d" : "problem type 2d",
                      .settings = settings,
                      .dimension = frame.space ? 3 : 2,
                      .coordinates = NodeRecords(frame),
                      .elements = BeamRecords(frame),
                      .materials = SectionRecords(frame),
                      .constraints = SupportRecords(frame, frame.Components()),
                      .loads = LoadRecords(frame, frame.Components())}
      .Text();
}

std::string ProblemParts::Text() const
{
  return header + "\n" + settings + "\nmesh dimension = " + std::to_string(dimension) +
         " elemtype Linear nnode = 2\ncoordinates\n" + coordinates +
         "\nend coordinates\nelements\n" + elements + "\nend elements\nmaterials\n" + materials +
         "\nend materials\nconstraints\n" + constraints + "\nend constraints\nnodal_point_loads\n" +
         loads + "\nend nodal_point_loads\n" + rest;
}

ProblemParts ProblemParts::With(std::string ProblemParts::*part, const std::string& value) const
{
  ProblemParts changed = *this;
  changed.*part = value;
  return changed;
}

ProblemParts SpaceProblem()
{
  return {.header = "problem type 3d",
          .dimension = 3,
          .coordinates = "1 0 0 0\n2 1 0 0",
          .elements = "1 1 2 1",
          .materials = "1 E 1 G 1 A 1 Iy 1 Iz 1 J 1",
          .constraints = "1 111111 0 0 0 0 0 0",
          .loads = "2 0 0 0 0 0 0"};
}

Vector3 operator+(const Vector3& a, const Vector3& b)
{
  return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}

Vector3 operator-(const Vector3& a, const Vector3& b)
{
  return a + -1.0 * b;
}

Vector3 operator*(double factor, const Vector3& v)
{
  return {factor * v[0], factor * v[1], factor * v[2]};
}

}  // namespace morlen
