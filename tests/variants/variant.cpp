// Makes the variants: every change of a kind at every place of a base model where it can be made.

#include "variants/variant.h"

#include <algorithm>
#include <functional>
#include <span>

namespace morlen::variants {

namespace {

constexpr const char* kKindNames[] = {"tab",
                                      "double_blank",
                                      "trailing_blank",
                                      "carriage_return",
                                      "blank_line",
                                      "glued_equals",
                                      "spaced_equals",
                                      "colon",
                                      "no_sign",
                                      "switch_value",
                                      "comment",
                                      "other_comment",
                                      "missing_end",
                                      "misspelt_word",
                                      "units_late",
                                      "decimal_comma",
                                      "fortran_exponent",
                                      "count_with_exponent",
                                      "node_list",
                                      "face_left_out",
                                      "free_value",
                                      "no_value"};

using Forms = std::vector<std::string>;

const std::vector<Layout>& Layouts()
{
  static const std::vector<Layout> layouts = [] {
    std::vector<Layout> all;
    for (const BaseModel& model : BaseModels())
      all.push_back(LayoutOf(model));
    return all;
  }();
  return layouts;
}

bool IsNew(Place place)
{
  return place >= Place::NewInList;
}

Place PlaceOf(const Line& line, std::size_t token)
{
  if (token == line.tokens.size())
    return Place::After;
  if (token == 0)
    return Place::Before;
  if (line.tokens[token - 1].field == Field::Key)
    return Place::BeforeValue;
  return line.tokens[token].optional ? Place::Items : Place::Inside;
}

Place PlaceAbove(const Line& line)
{
  if (line.role == Role::Record)
    return Place::NewInList;
  if (line.role == Role::End)
    return Place::NewAtEnd;
  const bool mesh = line.block == Block::Coordinates || line.block == Block::Elements;
  return mesh ? Place::NewInHead : Place::NewAtTop;
}

// Collects the variants of one kind in one block.
class Maker
{
public:
  Maker(Block wantedBlock, Kind wantedKind) : block(wantedBlock), kind(wantedKind) {}

  std::vector<Variant> All();

private:
  // Of a line, which All() visits in turn:
  void MakeGaps(const Forms& inner, const Forms& last);
  bool MayBeginWithForm(const Line& line) const;
  void MakeBlanks(const char* blank);
  void MakeNewLines(const Forms& forms);
  void MakeComments();
  void MakeSigns(const Forms& forms);
  void MakeLineEnds();
  void MakeSwitches();
  void MakeWithoutLine();
  void MakeMisspelt();
  void MakeLateUnits();
  void MakeWithoutValue();
  void MakeLeftOut(Field field);
  void MakeNodeLists(const Forms& forms);
  void MakeFreeValues();
  /// Changes the words with one of the fields.
  void MakeNumbers(std::span<const Field> fields,
                   const std::function<std::string(const std::string&)>& change);

  void MakeLine();
  void MakeSpellings();
  void MakeSlips();
  Line& Changed();
  void Add(Place place, std::size_t token, const std::string& form);

  Block block;
  Kind kind;
  std::vector<Variant> variants;
  const BaseModel* model = nullptr;
  const Layout* layout = nullptr;
  std::size_t at = 0;
  Layout changed;
};

std::vector<Variant> Maker::All()
{
  for (std::size_t i = 0; i < BaseModels().size(); ++i) {
    model = &BaseModels()[i];
    layout = &Layouts()[i];
    for (at = 0; at < layout->size(); ++at) {
      if ((*layout)[at].block == block)
        MakeLine();
    }
  }
  return std::move(variants);
}

// The line as it is in the base, to be changed before Add.
Line& Maker::Changed()
{
  changed = *layout;
  return changed[at];
}

void Maker::Add(Place place, std::size_t token, const std::string& form)
{
  variants.push_back({{model, layout, at, token, place, kind, form}, TextOf(changed)});
}

void Maker::MakeGaps(const Forms& inner, const Forms& last)
{
  const Line& base = (*layout)[at];
  for (std::size_t token = 0; token <= base.tokens.size(); ++token) {
    const Place place = PlaceOf(base, token);
    if (place == Place::Before && !MayBeginWithForm(base))
      continue;
    for (const std::string& form : place == Place::After ? last : inner) {
      Line& line = Changed();
      if (place == Place::After)
        line.tokens.push_back({Field::Word, form, ""});
      else
        line.tokens[token].glue += form + (kind == Kind::DoubleBlank ? "" : " ");
      Add(place, token, form);
    }
  }
}

// A comment before a keyword would take the whole block away.
bool Maker::MayBeginWithForm(const Line& line) const
{
  const bool comment = kind == Kind::Comment || kind == Kind::OtherComment;
  return !comment || line.role == Role::Record || line.block == Block::Title;
}

// Replaces the white space of a gap; signs stay and get the blank on both sides.
void Maker::MakeBlanks(const char* blank)
{
  const Line& base = (*layout)[at];
  for (std::size_t token = 0; token <= base.tokens.size(); ++token) {
    Line& line = Changed();
    const Place place = PlaceOf(base, token);
    if (place == Place::After)
      line.tokens.push_back({Field::Word, blank, ""});
    else if (HasSign(base.tokens[token]))
      line.tokens[token].glue = std::string(blank) + "=" + blank;
    else
      line.tokens[token].glue = blank;
    Add(place, token, blank);
  }
}

void Maker::MakeNewLines(const Forms& forms)
{
  for (const std::string& form : forms) {
    Changed();
    const Line added{block, Role::Comment, {{Field::Word, "", form}}};
    changed.insert(changed.begin() + static_cast<std::ptrdiff_t>(at), added);
    Add(PlaceAbove((*layout)[at]), 0, form);
  }
}

void Maker::MakeComments()
{
  static const Forms kOwn = {"# note",
                             "#note",
                             "\t# note",
                             "# end",
                             "#1 2 3",
                             "# note units = N-mm",
                             "# problem type 2d mesh dimension=2 elemtype=Hexahedra nnode=9"};
  static const Forms kForeign = {"! note", "// note"};
  const bool own = kind == Kind::Comment;
  Forms forms = own ? kOwn : kForeign;
  MakeNewLines(forms);
  if ((*layout)[at].role == Role::Comment)
    return;
  for (std::string& form : forms)
    form.insert(0, " ");
  MakeGaps(own ? Forms{"# note"} : kForeign, forms);
}

// Puts another sign between a key and its value.
void Maker::MakeSigns(const Forms& forms)
{
  const Line& base = (*layout)[at];
  for (std::size_t token = 1; token < base.tokens.size(); ++token) {
    if (base.tokens[token - 1].field != Field::Key)
      continue;
    for (const std::string& form : forms) {
      Changed().tokens[token].glue = form;
      Add(Place::BeforeValue, token, form);
    }
  }
}

// Of this line, and with the first line of the block of the whole file.
void Maker::MakeLineEnds()
{
  Changed().tokens.push_back({Field::Word, "\r", ""});
  Add(Place::After, (*layout)[at].tokens.size(), "\r");
  if (at > 0 && (*layout)[at - 1].block == block)
    return;
  Changed();
  for (Line& line : changed)
    line.tokens.push_back({Field::Word, "\r", ""});
  Add(Place::Line, 0, "\r");
}

void Maker::MakeSwitches()
{
  static const Forms kValues = {"=1", " = 1",  ": yes", " on",   " = true # note",
                                "=0", " = no", ":off",  " false"};
  const Line& base = (*layout)[at];
  if (block != Block::Settings || base.tokens.size() > 1)
    return;
  for (const std::string& value : kValues) {
    Changed().tokens[0].text += value;
    Add(Place::Line, 0, value);
  }
}

void Maker::MakeWithoutLine()
{
  if ((*layout)[at].role != Role::End)
    return;
  Changed();
  changed.erase(changed.begin() + static_cast<std::ptrdiff_t>(at));
  Add(Place::Line, 0, "");
}

// The first word of a block or a setting without its last letter.
void Maker::MakeMisspelt()
{
  const Line& base = (*layout)[at];
  const bool keyword =
      base.role == Role::Keyword || (base.role == Role::Line && block != Block::Title);
  if (!keyword)
    return;
  std::string& word = Changed().tokens[0].text;
  word.pop_back();
  Add(Place::Line, 0, std::string(word));
}

void Maker::MakeLateUnits()
{
  if (block != Block::UnitLines)
    return;
  Changed();
  std::rotate(changed.begin() + static_cast<std::ptrdiff_t>(at),
              changed.begin() + static_cast<std::ptrdiff_t>(at) + 1, changed.end());
  Add(Place::Line, 0, "");
}

void Maker::MakeWithoutValue()
{
  const Line& base = (*layout)[at];
  const bool item =
      base.role == Role::Record && base.tokens.size() > 1 && HasSign(base.tokens.back());
  if (!item)
    return;
  Changed().tokens.back().text.clear();
  Add(Place::BeforeValue, base.tokens.size() - 1, "");
}

void Maker::MakeLeftOut(Field field)
{
  const Line& base = (*layout)[at];
  for (std::size_t token = 0; token < base.tokens.size(); ++token) {
    if (base.tokens[token].field != field)
      continue;
    std::vector<Token>& tokens = Changed().tokens;
    tokens.erase(tokens.begin() + static_cast<std::ptrdiff_t>(token));
    Add(Place::Inside, token, "");
  }
}

void Maker::MakeNodeLists(const Forms& forms)
{
  const Line& base = (*layout)[at];
  for (std::size_t token = 1; token < base.tokens.size(); ++token) {
    const bool both =
        base.tokens[token].field == Field::Node && base.tokens[token - 1].field == Field::Node;
    for (const std::string& form : both ? forms : Forms()) {
      Changed().tokens[token].glue = form;
      Add(Place::Inside, token, form);
    }
  }
}

// Gives free components of a support a value.
void Maker::MakeFreeValues()
{
  const Line& base = (*layout)[at];
  if (block != Block::Constraints || base.role != Role::Record)
    return;
  const std::string& flags = base.tokens[1].text;
  for (std::size_t i = 0; i < flags.size(); ++i) {
    if (flags[i] != '0')
      continue;
    Changed().tokens[i + 2].text = "0.5";
    Add(Place::Inside, i + 2, "0.5");
  }
}

void Maker::MakeNumbers(std::span<const Field> fields,
                        const std::function<std::string(const std::string&)>& change)
{
  const Line& base = (*layout)[at];
  for (std::size_t token = 0; token < base.tokens.size(); ++token) {
    if (std::find(fields.begin(), fields.end(), base.tokens[token].field) == fields.end())
      continue;
    std::string& text = Changed().tokens[token].text;
    text = change(text);
    Add(PlaceOf(base, token), token, std::string(text));
  }
}

std::string WithComma(std::string number)
{
  const std::size_t point = number.find('.');
  if (point == std::string::npos)
    return number + ",0";
  number[point] = ',';
  return number;
}

void Maker::MakeLine()
{
  const bool hasOnlyAComment = (*layout)[at].role == Role::Comment;
  const bool changesBlanks = kind <= Kind::BlankLine;
  const bool addsComments = kind == Kind::Comment || kind == Kind::OtherComment;
  if (hasOnlyAComment && !changesBlanks && !addsComments)
    return;
  if (kind <= Kind::OtherComment)
    MakeSpellings();
  else
    MakeSlips();
}

void Maker::MakeSpellings()
{
  switch (kind) {
    case Kind::Tab:
      MakeBlanks("\t");
      return MakeBlanks(" \t ");
    case Kind::DoubleBlank:
      return MakeGaps({"  "}, {"  "});
    case Kind::TrailingBlank:
      return MakeGaps({}, {" ", "\t \t", "\f", "\v", " \r"});
    case Kind::CarriageReturn:
      return MakeLineEnds();
    case Kind::BlankLine:
      return MakeNewLines({"", "  ", "\t"});
    case Kind::GluedEquals:
      return MakeSigns({"="});
    case Kind::SpacedEquals:
      return MakeSigns({" = ", " =", "= "});
    case Kind::Colon:
      return MakeSigns({":", ": ", " : "});
    case Kind::NoSign:
      return MakeSigns({" "});
    case Kind::SwitchValue:
      return MakeSwitches();
    default:
      return MakeComments();
  }
}

void Maker::MakeSlips()
{
  using enum Field;
  static constexpr Field kReals[] = {Real};
  static constexpr Field kWhole[] = {Number, Node, Material, Count, Face, Code};
  switch (kind) {
    case Kind::MissingEnd:
      return MakeWithoutLine();
    case Kind::MisspeltWord:
      return MakeMisspelt();
    case Kind::UnitsLate:
      return MakeLateUnits();
    case Kind::DecimalComma:
      return MakeNumbers(kReals, WithComma);
    case Kind::FortranExponent:
      return MakeNumbers(kReals, [](const std::string& number) { return number + "d0"; });
    case Kind::CountWithExponent:
      return MakeNumbers(kWhole, [](const std::string& number) { return number + "e0"; });
    case Kind::NodeList:
      return MakeNodeLists({", ", "-"});
    case Kind::FaceLeftOut:
      return MakeLeftOut(Face);
    case Kind::FreeValue:
      return MakeFreeValues();
    default:
      return MakeWithoutValue();
  }
}

const char* NameOf(Place place)
{
  static constexpr const char* kNames[] = {
      "before the line", "before word",      "before item",   "before value", "after the line",
      "the line",        "above the record", "above the end", "above",        "above"};
  return kNames[static_cast<unsigned>(place)];
}

std::string Shown(const std::string& text)
{
  std::string shown;
  for (const char c : text) {
    static constexpr std::string_view kSpecial = "\t\r\f\v", kLetters = "trfv";
    const std::size_t special = kSpecial.find(c);
    shown += special == kSpecial.npos ? std::string(1, c) : std::string("\\") + kLetters[special];
  }
  return shown;
}

}  // namespace

const Token* Site::Right() const
{
  const std::vector<Token>& tokens = OwnLine().tokens;
  return token < tokens.size() ? &tokens[token] : nullptr;
}

Block Site::OwnBlock() const
{
  return place == Place::NewInHead ? Block::MeshHead : OwnLine().block;
}

const char* NameOf(Kind kind)
{
  return kKindNames[static_cast<unsigned>(kind)];
}

std::string Describe(const Site& site)
{
  return std::string(site.model->name) + ", " + NameOf(site.kind) + " '" + Shown(site.form) + "' " +
         NameOf(site.place) + " " +
         (IsNew(site.place) ? "" : std::to_string(site.token + 1) + " of ") + "'" +
         TextOf(site.OwnLine()) + "' (line " + std::to_string(site.line + 1) + ", " +
         NameOf(site.OwnBlock()) + ")";
}

std::vector<Variant> VariantsOf(Block block, Kind kind)
{
  return Maker(block, kind).All();
}

std::string WithoutRest(const Site& site)
{
  Layout cut = *site.layout;
  cut[site.line].tokens.resize(site.token);
  return TextOf(cut);
}

}  // namespace morlen::variants
