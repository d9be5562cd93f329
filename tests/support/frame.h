#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace morlen {

using Vector3 = std::array<double, 3>;

Vector3 operator+(const Vector3& a, const Vector3& b);
Vector3 operator-(const Vector3& a, const Vector3& b);
Vector3 operator*(double factor, const Vector3& v);

/// The data of a frame. A problem file is written from it, and the reference solution is computed
/// from it. Nodes, sections and beams are numbered from 1 in their order.
///
/// Supports and loads have six components at each node. In plane frames only the first three are
/// used (x and y displacement, rotation about z), and z is 0.
struct Frame
{
  struct Section
  {
    double E = 1.0;
    double G = 1.0;
    double A = 1.0;
    double Iy = 1.0;
    double Iz = 1.0;
    double J = 1.0;
    std::optional<Vector3> euler = {};  ///< angles of the local axes
  };
  struct Beam
  {
    int first = 1;
    int second = 2;
    int section = 1;
  };
  struct Support
  {
    int node = 1;
    std::array<int, 6> flags = {};
    std::array<double, 6> values = {};
    std::optional<Vector3> euler = {};
  };
  struct NodalLoad
  {
    int node = 1;
    std::array<double, 6> values = {};
  };

  bool space = true;
  std::vector<Vector3> nodes;
  std::vector<Section> sections;
  std::vector<Beam> beams;
  std::vector<Support> supports;
  std::vector<NodalLoad> loads;

  /// The number of components of a node.
  int Components() const { return space ? 6 : 3; }
};

/// The flags of a support that holds all components.
constexpr std::array<int, 6> kClamped = {1, 1, 1, 1, 1, 1};

/// The frame as a problem file. settings: lines after the header.
std::string ProblemText(const Frame& frame, const std::string& settings = "");

// The records of a frame, one on each line. Supports and loads have this many components.
std::string NodeRecords(const Frame& frame);
std::string BeamRecords(const Frame& frame);
std::string SectionRecords(const Frame& frame);
std::string SupportRecords(const Frame& frame, int components);
std::string LoadRecords(const Frame& frame, int components);

/// The parts of a problem file that is written by hand. A test states only the values that matter.
struct ProblemParts
{
  std::string header = "problem type 2d";
  std::string settings = "";
  int dimension = 2;
  std::string coordinates = "1 0 0\n2 1 0";
  std::string elements = "1 1 2 1";
  std::string materials = "1 E 1 A 1 Iz 1";
  std::string constraints = "1 111 0 0 0";
  std::string loads = "2 0 0 0";
  std::string rest = "";  ///< lines after the loads

  std::string Text() const;
  /// A copy with another value of one part.
  ProblemParts With(std::string ProblemParts::*part, const std::string& value) const;
};

/// A space cantilever from (0,0,0) to (1,0,0) whose values are all 1.
ProblemParts SpaceProblem();

}  // namespace morlen
