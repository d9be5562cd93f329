#include "variants/layout.h"

#include <algorithm>
#include <array>
#include <sstream>

namespace morlen::variants {

namespace {

struct BlockName
{
  Block block;
  const char* name;
  const char* keyword;  ///< empty for lines outside of blocks
};

constexpr BlockName kBlocks[] = {
    {Block::Title, "title", ""},
    {Block::UnitsNames, "units_names", "units_names"},
    {Block::UnitLines, "unit_lines", ""},
    {Block::MeshHead, "mesh_head", ""},
    {Block::Coordinates, "coordinates", "coordinates"},
    {Block::Elements, "elements", "elements"},
    {Block::Materials, "materials", "materials"},
    {Block::Constraints, "constraints", "constraints"},
    {Block::NodalLoads, "nodal_point_loads", "nodal_point_loads"},
    {Block::Rotules, "rotules", "rotules"},
    {Block::ElemRotules, "elem_rotules", "elem_rotules"},
    {Block::LocalPressure, "local_pressure_loads", "local_pressure_loads"},
    {Block::GlobalPressure, "global_pressure_loads", "global_pressure_loads"},
    {Block::ProjectedPressure, "global_projected_pressure_loads",
     "global_projected_pressure_loads"},
    {Block::FaceLoads, "face_loads", "face_loads"},
    {Block::Temperature, "temperature_loads", "temperature_loads"},
    {Block::Settings, "settings", ""},
};

// The words of a line with the glue before them. "key=value", "key: value" and "key = value" are
// two words each.
std::vector<Token> Cut(const std::string& line)
{
  std::vector<Token> tokens;
  std::istringstream words(line);
  std::string glue;
  for (std::string word; words >> word;) {
    if (word == "=") {
      glue += "= ";
      continue;
    }
    const std::size_t sign = word.find_first_of("=:");
    tokens.push_back({Field::Word, glue, word.substr(0, sign)});
    glue = " ";
    if (sign == std::string::npos)
      continue;
    if (sign + 1 == word.size())
      glue = word.substr(sign) + " ";
    else
      tokens.push_back({Field::Word, word.substr(sign, 1), word.substr(sign + 1)});
  }
  return tokens;
}

// Words before a sign are keys; the number of the other words gives their meaning.
void NameFields(std::vector<Token>& tokens, const std::vector<Field>& fields)
{
  std::size_t next = 0;
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    if (i + 1 < tokens.size() && HasSign(tokens[i + 1])) {
      tokens[i].field = Field::Key;
      tokens[i].optional = true;
    } else if (HasSign(tokens[i])) {
      tokens[i].field = tokens[i - 1].text == "units" ? Field::Name : Field::Real;
    } else {
      tokens[i].field = fields[std::min(next++, fields.size() - 1)];
    }
  }
}

// The fields of a record in front of its items.
std::vector<Field> FieldsOf(Block block, const std::string& elemType, int count)
{
  using enum Field;
  const bool solid = elemType == "Tetrahedra";
  switch (block) {
    case Block::UnitsNames:
      return {Name, Name, Name, Name, Real};
    case Block::Elements: {
      std::vector<Field> fields(static_cast<std::size_t>(solid                    ? 4
                                                         : elemType == "Triangle" ? 3
                                                                                  : 2),
                                Node);
      fields.insert(fields.begin(), Number);
      fields.push_back(Material);
      return fields;
    }
    case Block::Constraints:
      return {Number, Flags, Real};
    case Block::Rotules:
      return {Number, Remark};
    case Block::ElemRotules:
      return {Number, Code};
    case Block::FaceLoads:
      if (elemType == "Triangle" && count == 5)
        return {Number, Face, Real};
      [[fallthrough]];
    case Block::LocalPressure:
    case Block::GlobalPressure:
    case Block::ProjectedPressure:
      return solid ? std::vector<Field>{Number, Face, Real} : std::vector<Field>{Number, Real};
    default:
      return {Number, Real};
  }
}

void MarkOptional(Line& line)
{
  std::vector<Token>& tokens = line.tokens;
  if (line.block == Block::Rotules)
    tokens[1].optional = true;
  // The torque of a beam.
  const bool noItems = tokens.back().field == Field::Real && !HasSign(tokens.back());
  if (line.block == Block::LocalPressure && tokens.size() == 5 && noItems &&
      tokens[1].field == Field::Real)
    tokens[4].optional = true;
}

// The meaning of a line outside of blocks: keys with values.
void NameLine(Line& line)
{
  static constexpr std::array<std::string_view, 3> kCounts = {"dimension", "nnode",
                                                              "NumOfDivisions"};
  NameFields(line.tokens, {Field::Word});
  std::string key;
  for (Token& token : line.tokens) {
    if (token.field == Field::Key)
      key = token.text;
    const bool counted = std::find(kCounts.begin(), kCounts.end(), key) != kCounts.end();
    const bool named = key == "type" || key == "elemtype" || key == "Solver";
    if (token.field == Field::Real)
      token.field = named ? Field::Name : counted ? Field::Count : Field::Real;
    else if (token.field == Field::Word && key == "GravityDirection")
      token.field = Field::Real;
    token.optional = false;
  }
  // "units_res kN-m", "elemtype Linear"
  for (std::size_t i = 0; i + 1 < line.tokens.size(); ++i) {
    if (line.block != Block::UnitLines && line.tokens[i].text != "elemtype")
      continue;
    line.tokens[i].field = Field::Key;
    line.tokens[i + 1].field = Field::Name;
  }
}

Block BlockOfLine(const std::string& word)
{
  if (word[0] == '#' || word == "problem")
    return Block::Title;
  if (word == "mesh")
    return Block::MeshHead;
  return word.starts_with("units_") ? Block::UnitLines : Block::Settings;
}

// Follows the blocks of a file from line to line.
class Reader
{
public:
  Line Next(const std::string& text)
  {
    Line line{open, Role::Record, Cut(text)};
    if (open != Block::kCount)
      ReadInBlock(line);
    else if (!ReadKeyword(line))
      ReadAtTop(text, line);
    return line;
  }

private:
  void ReadInBlock(Line& line)
  {
    if (line.tokens[0].text == "end") {
      line.role = Role::End;
      line.tokens[1].optional = true;
      open = Block::kCount;
      return;
    }
    NameFields(line.tokens, FieldsOf(open, elemType, CountPlain(line)));
    MarkOptional(line);
  }

  bool ReadKeyword(Line& line)
  {
    const auto* named =
        std::find_if(std::begin(kBlocks), std::end(kBlocks),
                     [&](const BlockName& b) { return line.tokens[0].text == b.keyword; });
    if (named == std::end(kBlocks))
      return false;
    open = line.block = named->block;
    line.role = Role::Keyword;
    return true;
  }

  void ReadAtTop(const std::string& text, Line& line)
  {
    line.block = BlockOfLine(line.tokens[0].text);
    if (text[0] == '#') {
      line.role = Role::Comment;
      line.tokens = {{Field::Word, "", text}};
      return;
    }
    line.role = Role::Line;
    NameLine(line);
    for (std::size_t i = 0; i + 1 < line.tokens.size(); ++i) {
      if (line.tokens[i].text == "elemtype")
        elemType = line.tokens[i + 1].text;
    }
  }

  // The number of words that belong to no item.
  static int CountPlain(const Line& line)
  {
    const auto signs = std::count_if(line.tokens.begin(), line.tokens.end(), HasSign);
    return static_cast<int>(line.tokens.size()) - 2 * static_cast<int>(signs);
  }

  Block open = Block::kCount;
  std::string elemType;
};

}  // namespace

bool HasSign(const Token& token)
{
  return token.glue.find_first_of("=:") != std::string::npos;
}

const char* NameOf(Block block)
{
  return kBlocks[static_cast<unsigned>(block)].name;
}

Layout LayoutOf(const BaseModel& model)
{
  Layout layout;
  Reader reader;
  std::istringstream text(model.text);
  for (std::string line; std::getline(text, line);)
    layout.push_back(reader.Next(line));
  return layout;
}

std::string TextOf(const Line& line)
{
  std::string text;
  for (const Token& token : line.tokens)
    text += token.glue + token.text;
  return text;
}

std::string TextOf(const Layout& layout)
{
  std::string text;
  for (const Line& line : layout)
    text += TextOf(line) + "\n";
  return text;
}

}  // namespace morlen::variants
