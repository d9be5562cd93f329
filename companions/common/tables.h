#pragma once

#include <span>
#include <string>
#include <variant>
#include <vector>

#include "common/model_data.h"
#include "common/result_data.h"

namespace morlen::tables {

/// A value of a table: nothing, a number, or a word.
using Cell = std::variant<std::monostate, int, double, const char*>;

struct Column
{
  std::string name;
  std::string unit;  ///< empty for a pure number or a word
};

/// Rows of cells under named columns, one row after the other.
struct Table
{
  std::string name;
  std::vector<Column> columns;
  std::vector<Cell> cells;

  std::size_t Rows() const { return cells.size() / columns.size(); }
  void Put(const Cell& cell) { cells.push_back(cell); }
  void Put(std::span<const double> values)
  {
    cells.insert(cells.end(), values.begin(), values.end());
  }
};

/// Names of units and of derived units. Without names in the problem file they name the
/// dimension: "force", "length", "force/length2".
class UnitTexts
{
public:
  explicit UnitTexts(const model::Units& units);

  std::string Length(int power = 1) const;
  std::string Force() const { return force; }
  std::string Moment() const { return force + "*" + length; }
  std::string ForcePer(int lengthPower) const { return force + "/" + Length(lengthPower); }
  std::string MomentPerLength() const { return Moment() + "/" + length; }
  std::string Pressure() const { return pressure; }

private:
  std::string force, length, pressure;
};

/// A value of materials: its name and unit, and the kinds of elements that have it.
struct MaterialValue
{
  const char* name;
  std::string unit;  ///< empty for a pure number
  double model::Material::*field;
  bool ofBeams, ofShells, ofSolids;

  bool IsOf(model::Kind kind) const
  {
    return kind == model::Kind::Beam ? ofBeams : kind == model::Kind::Shell ? ofShells : ofSolids;
  }
};

/// All values of materials.
std::vector<MaterialValue> MaterialValues(const UnitTexts& units);

/// The whole model and its results as tables. Tables that the model has no values for are without
/// rows.
std::vector<Table> AllTables(const model::Model& model, const results::Results& results);
/// The tables of the model alone: nodes, elements, materials, supports and loads.
std::vector<Table> ModelTables(const model::Model& model);
/// The tables of the results alone.
std::vector<Table> ResultTables(const model::Model& model, const results::Results& results);

}  // namespace morlen::tables
