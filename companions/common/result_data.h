#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <vector>

#include "common/model_data.h"

/// The results of a run as plain data, in the order of the model's lists. Signs and axes are
/// those of the result files.
namespace morlen::results {

struct Node
{
  Vec3 displacement{};
  Vec3 rotation{};                 ///< radians; in the text results only
  Vec3 force{};                    ///< reaction
  Vec3 moment{};                   ///< reaction
  std::array<double, 6> stress{};  ///< of solids: Sx Sy Sz Txy Tyz Txz
  double vonMises = 0.0;
  double translation = 0.0;           ///< length of the displacement
  std::array<double, 3> principal{};  ///< stresses of solids, descending
};

/// A division point of a beam.
struct BeamPoint
{
  Vec3 displacement{};
  std::array<double, 6> forces{};  ///< N, Vy, Vz, T, My, Mz; in the plane Vz, T, My are 0
};

/// A Gauss point of a shell.
struct ShellPoint
{
  std::array<double, 8> local{};       ///< Nx' Ny' Nxy' Mx' My' Mxy' Qx' Qy'
  std::array<double, 6> main{};        ///< N11 N22 M11 M22 Qm1 Qm2
  std::array<double, 6> mainAngles{};  ///< Euler angles of the axes of N, then of M
  std::array<double, 4> principal{};   ///< N1 N2 M1 M2, the larger ones first
  std::array<double, 4> design{};      ///< moments mx+ my+ mx- my- of slabs by Wood and Armer
};

/// Forces and moments that the nodes exert on the ends of a beam, in its local axes: Px Py Pz
/// Mx My Mz each; in the plane only Px, Py and Mz.
using BeamEnds = std::array<std::array<double, 6>, 2>;

struct Results
{
  std::vector<Node> nodes;
  std::vector<BeamPoint> beamPoints;    ///< of element e from e.firstPoint on, e.points of them
  std::vector<ShellPoint> shellPoints;  ///< of shells, in the same order
  std::vector<BeamEnds>
      beamEnds;  ///< of all beams, in the order of the model; empty without text results
  // True for the values that the files have:
  bool rotations = false;   ///< Node::rotation
  bool shellLocal = false;  ///< ShellPoint::local
  bool shellMain = false;   ///< ShellPoint::main and mainAngles
  bool stresses = false;    ///< Node::stress and vonMises
  bool derived = false;     ///< translation, principal and design
};

/// A problem file and the result files of its run.
struct Files
{
  std::filesystem::path model;
  std::filesystem::path post;                 ///< the results for the post-processor
  std::optional<std::filesystem::path> text;  ///< the text results, if there are any
  bool anyTime = false;                       ///< take results that are older than the model
};

/// The names that the program gives its results for this problem file; the text results only when
/// there are some under the same name with the ending ".txt".
Files UsualFiles(const std::filesystem::path& model);

/// The result files of the run: the results for the post-processor, then the text results.
std::vector<std::filesystem::path> ResultsOf(const Files& files);
/// True when the post-process results exist and are not older than the problem file.
bool HasFreshResults(const Files& files);

/// Reads the results of the model. Fatal: files that are missing, older than the problem file
/// or damaged, or that belong to another model or to two different runs.
Results ReadResults(const model::Model& model, const Files& files);

}  // namespace morlen::results
