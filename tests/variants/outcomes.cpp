// The rules of reading as a table: kind of change, block, place -> outcome. The first row that
// fits a site counts.

#include "variants/outcomes.h"

#include <algorithm>

namespace morlen::variants {

namespace {

// A set of enumerators; the empty set has all.
template <class E>
struct Set
{
  std::uint32_t bits = 0;

  constexpr Set() = default;
  constexpr Set(std::initializer_list<E> members)
  {
    for (const E member : members)
      bits |= 1U << static_cast<unsigned>(member);
  }
  constexpr bool Has(E member) const
  {
    return bits == 0 || (bits >> static_cast<unsigned>(member) & 1U) != 0;
  }
};

using Condition = bool (*)(const Site&);

struct Result
{
  Outcome outcome;
  const char* message = "";  ///< % is the number of the record, $ the first word of the form
  check::Code code = {};
};

struct Rule
{
  Set<Kind> kinds;
  Set<Block> blocks;
  Set<Place> places;
  Condition when;  ///< null: always
  Result result;
};

// --- Conditions ---

bool IsSpace(const Site& site)
{
  return site.model->components == 6;
}

bool IsShell(const Site& site)
{
  return std::string_view(site.model->name) == "shell";
}

bool IsRecord(const Site& site)
{
  return site.OwnLine().role == Role::Record;
}

bool IsLastRecord(const Site& site)
{
  return IsRecord(site) && (*site.layout)[site.line + 1].role == Role::End;
}

bool IsEnd(const Site& site)
{
  return site.OwnLine().role == Role::End;
}

bool IsKeyword(const Site& site)
{
  return site.OwnLine().role == Role::Keyword;
}

// The keyword of a block with records.
bool IsKeywordOfRecords(const Site& site)
{
  return IsKeyword(site) && (*site.layout)[site.line + 1].role == Role::Record;
}

bool IsLastEnd(const Site& site)
{
  return std::none_of(site.layout->begin() + static_cast<std::ptrdiff_t>(site.line) + 1,
                      site.layout->end(), [](const Line& line) { return line.role == Role::End; });
}

bool IsInFirstMesh(const Site& site)
{
  return std::count_if(site.layout->begin(),
                       site.layout->begin() + static_cast<std::ptrdiff_t>(site.line),
                       [](const Line& line) { return line.block == Block::MeshHead; }) == 1;
}

template <Field field>
bool IsBefore(const Site& site)
{
  return site.Right() && site.Right()->field == field;
}

// A value of the record itself, not of an item.
bool IsPlainValue(const Site& site)
{
  return site.place != Place::BeforeValue;
}

// The last value that the record needs.
bool IsLastValue(const Site& site)
{
  const std::vector<Token>& tokens = site.OwnLine().tokens;
  return IsPlainValue(site) && (site.token + 1 == tokens.size() || tokens[site.token + 1].optional);
}

// The rest of a number of a node or an element is in the place of a number that the record needs.
bool CutsTheRecord(const Site& site)
{
  if (site.kind == Kind::NodeList)
    return site.form == ", ";
  const std::vector<Token>& tokens = site.OwnLine().tokens;
  if (site.token + 1 >= tokens.size())
    return false;
  const Token& next = tokens[site.token + 1];
  return next.field == Field::Node || (next.field == Field::Real && !next.optional);
}

// The last value that the record needs, and more follows: the rest of the number becomes a key, and
// the word after it the value of that key.
bool IsLastBeforeOthers(const Site& site)
{
  return IsLastValue(site) && site.token + 1 < site.OwnLine().tokens.size();
}

bool IsThirdOfPlaneGravity(const Site& site)
{
  return std::string_view(site.model->name) == "plane" && site.FirstWord() == "GravityDirection" &&
         site.token == 3;
}

template <char first>
bool IsLineOf(const Site& site)
{
  return site.FirstWord()[0] == first;
}

bool IsUnitsMesh(const Site& site)
{
  return site.FirstWord() == "units_mesh";
}

bool SwitchesOff(const Site& site)
{
  return site.form == "=0" || site.form == " = no" || site.form == ":off" || site.form == " false";
}

bool IsAboveHeader(const Site& site)
{
  return site.OwnLine().block == Block::Title;
}

// The values of a face load of a shell that has a face. A record without a face has three values,
// so the first of them may be the face.
template <std::size_t place>
bool IsAfterFace(const Site& site)
{
  return IsShell(site) && site.OwnLine().tokens[1].field == Field::Face && site.token == 1 + place;
}

// --- Messages ---

constexpr const char* kUnitsRecord =
    "error: 'units_names' items should be: name nameN nameM namePa facN facM\n";
constexpr const char* kNoSystem = "error: Unit name '$' has not been previously defined\n";
constexpr const char* kNoLength = "error: Unit length name '$' has not been previously defined\n";
constexpr const char* kNoType = "Type of problem unknown. Only 2d and 3d\n";
constexpr const char* kNoElemType =
    "ElemType must be: Linear,Triangle,Quadrilateral, Tetrahedra or Hexahedra\n";
constexpr const char* kNoDivisions = "error: Number of divisions must be positive";
constexpr const char* kSmoothing = "error: DoSmoothing must have angle >0 and <PI rad\n";
constexpr const char* kCoplanarity = "error: CoplanarityAngle must have angle >0 and <PI rad\n";
constexpr const char* kNoSolver =
    "error: type of solver must be: Automatic, SkyLine, Double or Sparse\n";
constexpr const char* kNoGravity = "error: GravityDirection must be a vector no null";
constexpr const char* kUnknownKey = "Unknown key name=$\n";
constexpr const char* kUnknownWord = "Unknown key name=note\n";
constexpr const char* kUnknownItem = "Input of materials not correct. Unknown char: '$'\n";
constexpr const char* kUnknownNote = "Input of materials not correct. Unknown char: 'note'\n";
constexpr const char* kYoung = "error in materials. Young Modulus can only be E, Ex or Ey\n";
constexpr const char* kConstraint3 = "Not reading correctly the constraints. Number=%\n";
constexpr const char* kConstraintA = "Not reading correctly the constraints. -A- Number=%\n";
constexpr const char* kConstraintB = "Not reading correctly the constraints. -B- Number=%\n";
constexpr const char* kLoadB = "Not reading correctly the loads B. Number=%\n";
constexpr const char* kLoadC = "Not reading correctly the loads C. Number=%\n";
constexpr const char* kLoadD = "Not reading correctly the loads. -D- Number=%\n";
constexpr const char* kPressure = "Not reading correctly preassure_loads. ElemNum=%\n";
constexpr const char* kPressureItem = "Not reading correctly the preassure_loads. ElemNum=%\n";
constexpr const char* kTemperature = "Not reading correctly temperature_loads. ElemNum=%\n";
constexpr const char* kHingeCode = "Not reading correctly the rotules -b-. Number=%\n";
constexpr const char* kNoNodes = "error: list of nodes does not contain any node\n";
constexpr const char* kNoEnd = "can't find word ***end*** in input file\n";

// --- The table ---

using K = Kind;
using B = Block;
using P = Place;
using C = check::Code;

constexpr auto kPartlyRead = check::Code::NumberPartlyRead;
constexpr auto kRecordsLost = check::Code::RecordsLost;

constexpr Result kSame{Outcome::Same};
constexpr Result kDoubtful{Outcome::Doubtful};
constexpr Result kCut{Outcome::Cut};
constexpr Result kCutDoubtful{Outcome::CutDoubtful};

constexpr Result Refuse(const char* message)
{
  return {Outcome::Refused, message};
}

constexpr Result Lose(check::Code code)
{
  return {Outcome::Lost, "", code};
}

constexpr Result Ignore(check::Code code)
{
  return {Outcome::Ignored, "", code};
}

constexpr Set<K> kBlanksAndSigns = {
    K::Tab,         K::DoubleBlank,  K::TrailingBlank, K::CarriageReturn, K::BlankLine,
    K::GluedEquals, K::SpacedEquals, K::Colon,         K::NoSign};
constexpr Set<K> kForeign = {K::OtherComment};
constexpr Set<K> kPartly = {K::DecimalComma, K::FortranExponent};
constexpr Set<B> kPressures = {B::LocalPressure, B::GlobalPressure, B::ProjectedPressure,
                               B::FaceLoads};
constexpr Set<P> kNewLines = {P::NewInList, P::NewAtEnd, P::NewInHead, P::NewAtTop};
constexpr Set<B> kSupportsAndLoads = {B::Constraints,    B::NodalLoads,        B::LocalPressure,
                                      B::GlobalPressure, B::ProjectedPressure, B::FaceLoads};
constexpr Set<B> kWithItems = {B::Elements, B::Materials};
constexpr Set<P> kInList = {P::NewInList, P::NewAtEnd};
constexpr Set<B> kTopLines = {B::Title, B::UnitLines, B::Settings};
constexpr Set<K> kBothComments = {K::Comment, K::OtherComment};

constexpr Rule kRules[] = {
    // White space and signs mean nothing.
    {kBlanksAndSigns, {}, {}, nullptr, kSame},
    {{K::SwitchValue}, {}, {}, SwitchesOff, kCut},
    {{K::SwitchValue}, {}, {}, nullptr, kSame},

    // A comment ends the line where a record or a key could begin.
    {{K::Comment}, {}, kNewLines, nullptr, kSame},
    {{K::Comment}, {}, {P::After}, nullptr, kSame},
    {{K::Comment}, {}, {P::Items}, nullptr, kCut},
    {{K::Comment}, {}, {P::Before}, IsRecord, kCut},
    {{K::Comment}, {B::FaceLoads}, {P::Inside}, nullptr, kCut},
    {{K::Comment}, {B::Elements}, {P::Inside}, IsBefore<Field::Material>, kCut},

    // Words of a head are found in comments where they are nowhere else.
    {{K::Comment}, {B::Title}, {P::Before, P::Inside}, nullptr, kDoubtful},
    {{K::Comment}, {B::MeshHead}, {P::Inside}, nullptr, kDoubtful},
    {{K::Comment}, {B::MeshHead}, {P::BeforeValue}, IsBefore<Field::Count>, kDoubtful},

    // Comments as by other programs: read as words, or as items without meaning.
    {kForeign, {}, {P::NewAtTop}, IsAboveHeader, kDoubtful},
    {kForeign, {}, {P::NewAtTop}, nullptr, Refuse(kUnknownKey)},
    {kForeign, {}, {P::NewInHead}, nullptr, kDoubtful},
    {kForeign, {B::UnitsNames}, kInList, nullptr, Refuse(kUnitsRecord)},
    {kForeign, {}, {P::NewInList}, nullptr, Lose(kRecordsLost)},
    {kForeign, {}, {P::NewAtEnd}, nullptr, kDoubtful},
    {kForeign, {}, {P::After, P::Items}, IsEnd, kSame},
    {kForeign, {B::Title}, {P::Before}, nullptr, kDoubtful},
    {kForeign, {B::UnitsNames}, {P::Before}, nullptr, Refuse(kUnitsRecord)},
    {kForeign, {}, {P::Before}, IsLastRecord, kCutDoubtful},
    {kForeign, {}, {P::Before}, nullptr, Lose(kRecordsLost)},
    {kForeign, {B::UnitsNames}, {P::After}, IsKeyword, Refuse(kUnitsRecord)},
    {kForeign, {}, {P::After}, IsKeywordOfRecords, Lose(kRecordsLost)},
    {kForeign, {}, {P::After}, IsKeyword, kDoubtful},
    {kForeign, kTopLines, {P::After}, nullptr, Refuse(kUnknownKey)},
    {kForeign, kWithItems, {P::After, P::Items}, nullptr, Refuse(kUnknownItem)},
    {kForeign, {B::Rotules}, {P::After, P::Items}, nullptr, kSame},
    {kForeign, {}, {P::After}, nullptr, kDoubtful},
    {kForeign, {}, {P::Items}, IsBefore<Field::Real>, Refuse(kPressureItem)},
    {kForeign, {}, {P::Items}, nullptr, kDoubtful},
    {kForeign, {B::Title, B::MeshHead}, {P::Inside}, nullptr, kDoubtful},
    {kForeign, {B::MeshHead}, {P::BeforeValue}, IsBefore<Field::Count>, kDoubtful},
    {kForeign, {B::Elements}, {P::Inside}, IsBefore<Field::Material>, Refuse(kUnknownNote)},
    {kForeign, {B::FaceLoads}, {P::Inside}, IsAfterFace<3>, Refuse(kPressureItem)},

    // A plane problem needs two numbers of the direction. The third word of the line is consumed.
    {{K::Comment}, {B::Settings}, {P::Inside}, IsThirdOfPlaneGravity, kCut},
    {kForeign, {B::Settings}, {P::Inside}, IsThirdOfPlaneGravity, Refuse(kUnknownWord)},

    // Comments where a value is needed, by either sign.
    {kBothComments, {B::Title}, {P::BeforeValue}, nullptr, Refuse(kNoType)},
    {kBothComments, {B::MeshHead}, {P::BeforeValue}, nullptr, Refuse(kNoElemType)},
    {kBothComments, {B::UnitsNames}, {P::Inside}, nullptr, Refuse(kUnitsRecord)},
    {kBothComments, {B::UnitLines}, {P::BeforeValue}, IsUnitsMesh, Refuse(kNoLength)},
    {kBothComments, {B::UnitLines}, {P::BeforeValue}, nullptr, Refuse(kNoSystem)},
    {kBothComments, {B::Settings}, {P::BeforeValue}, IsLineOf<'N'>, Refuse(kNoDivisions)},
    {kBothComments, {B::Settings}, {P::BeforeValue}, IsLineOf<'D'>, Refuse(kSmoothing)},
    {kBothComments, {B::Settings}, {P::BeforeValue}, IsLineOf<'C'>, Refuse(kCoplanarity)},
    {kBothComments, {B::Settings}, {P::BeforeValue}, IsLineOf<'S'>, Refuse(kNoSolver)},
    {kBothComments, {B::Settings}, {P::BeforeValue, P::Inside}, IsLineOf<'G'>, Refuse(kNoGravity)},
    {kBothComments, {B::Coordinates, B::Elements}, {P::Inside}, nullptr, Lose(kRecordsLost)},
    {kBothComments, kWithItems, {P::BeforeValue}, IsBefore<Field::Name>, Refuse(kNoSystem)},
    {kBothComments, kWithItems, {P::BeforeValue}, nullptr, Refuse(kUnknownNote)},
    {kBothComments, {B::ElemRotules}, {P::Inside}, nullptr, Refuse(kHingeCode)},
    {kBothComments, {B::Constraints}, {P::Inside}, IsSpace, Refuse(kConstraintA)},
    {kBothComments, {B::Constraints}, {P::Inside}, nullptr, Refuse(kConstraint3)},
    {kBothComments, {B::NodalLoads}, {P::Inside}, IsSpace, Refuse(kLoadC)},
    {kBothComments, {B::NodalLoads}, {P::Inside}, nullptr, Refuse(kLoadB)},
    {kBothComments, kPressures, {P::Inside}, nullptr, Refuse(kPressure)},
    {kBothComments, {B::Temperature}, {P::Inside}, nullptr, Refuse(kTemperature)},
    {kBothComments, kSupportsAndLoads, {P::BeforeValue}, IsBefore<Field::Name>, Refuse(kNoSystem)},
    {kBothComments, kSupportsAndLoads, {P::BeforeValue}, nullptr, Lose(kPartlyRead)},

    // Lines.
    {{K::MissingEnd}, {B::UnitsNames}, {}, nullptr, Refuse(kUnitsRecord)},
    {{K::MissingEnd}, {}, {}, IsLastEnd, Refuse(kNoEnd)},
    {{K::MissingEnd}, {}, {}, nullptr, Lose(kRecordsLost)},
    {{K::MisspeltWord}, {B::Coordinates}, {}, IsInFirstMesh, Refuse(kNoNodes)},
    {{K::MisspeltWord}, {B::Coordinates, B::Elements}, {}, nullptr, Lose(kRecordsLost)},
    {{K::MisspeltWord}, {}, {}, nullptr, Refuse(kUnknownKey)},
    {{K::UnitsLate}, {}, {}, nullptr, Lose(C::UnitOrder)},

    // Numbers that are only partly numbers: the rest is the next value, an item, or nothing.
    {{K::DecimalComma}, {B::Settings}, {}, IsLineOf<'D'>, Refuse(kSmoothing)},
    {{K::DecimalComma}, {B::Settings}, {}, IsLineOf<'C'>, Refuse(kCoplanarity)},
    {{K::DecimalComma, K::FortranExponent, K::CountWithExponent, K::NodeList},
     {B::Coordinates, B::Elements},
     {},
     CutsTheRecord,
     Lose(kRecordsLost)},
    {kPartly, {B::UnitsNames}, {}, IsLastValue, Lose(kPartlyRead)},
    {kPartly, {B::UnitsNames}, {}, nullptr, Refuse(kUnitsRecord)},
    {kPartly,
     {B::Coordinates, B::Elements, B::Materials, B::Settings},
     {},
     nullptr,
     Lose(kPartlyRead)},
    {kPartly, {B::Temperature}, {}, IsLastValue, Lose(kPartlyRead)},
    {kPartly, {B::Temperature}, {}, nullptr, Refuse(kTemperature)},
    {kPartly, {}, {P::BeforeValue}, nullptr, Lose(kPartlyRead)},
    {kPartly, kSupportsAndLoads, {}, IsLastBeforeOthers, Lose(kPartlyRead)},
    {kPartly, {B::Constraints}, {}, IsLastValue, Refuse(kConstraintB)},
    {kPartly, {B::Constraints}, {}, IsSpace, Refuse(kConstraintA)},
    {kPartly, {B::Constraints}, {}, nullptr, Refuse(kConstraint3)},
    {kPartly, {B::NodalLoads}, {}, IsLastValue, Refuse(kLoadD)},
    {kPartly, {B::NodalLoads}, {}, IsSpace, Refuse(kLoadC)},
    {kPartly, {B::NodalLoads}, {}, nullptr, Refuse(kLoadB)},
    {kPartly, kPressures, {}, IsLastValue, Refuse(kPressureItem)},
    {kPartly, {B::FaceLoads}, {}, IsAfterFace<2>, Lose(kPartlyRead)},
    {kPartly, kPressures, {}, nullptr, Refuse(kPressure)},

    {{K::CountWithExponent}, {B::MeshHead, B::Settings}, {}, nullptr, Ignore(kPartlyRead)},
    {{K::CountWithExponent}, {B::Coordinates, B::Elements}, {}, nullptr, Lose(kPartlyRead)},
    {{K::CountWithExponent}, {B::Materials}, {}, nullptr, Refuse(kYoung)},
    {{K::CountWithExponent}, {B::Constraints}, {}, IsSpace, Refuse(kConstraintA)},
    {{K::CountWithExponent}, {B::Constraints}, {}, nullptr, Refuse(kConstraint3)},
    {{K::CountWithExponent}, {B::NodalLoads}, {}, IsSpace, Refuse(kLoadC)},
    {{K::CountWithExponent}, {B::NodalLoads}, {}, nullptr, Refuse(kLoadB)},
    {{K::CountWithExponent}, {B::Rotules}, {}, nullptr, Ignore(kPartlyRead)},
    {{K::CountWithExponent}, {B::ElemRotules}, {}, IsBefore<Field::Code>, Ignore(kPartlyRead)},
    {{K::CountWithExponent}, {B::ElemRotules}, {}, nullptr, Refuse(kHingeCode)},
    {{K::CountWithExponent}, {B::Temperature}, {}, nullptr, Refuse(kTemperature)},
    {{K::CountWithExponent}, {B::FaceLoads}, {}, IsAfterFace<0>, Refuse(kPressureItem)},
    {{K::CountWithExponent}, kPressures, {}, nullptr, Refuse(kPressure)},

    {{K::NodeList, K::FaceLeftOut}, {}, {}, nullptr, Lose(kPartlyRead)},
    {{K::FreeValue}, {}, {}, nullptr, Ignore(C::ValueAtFreeComponent)},
    {{K::NoValue}, kWithItems, {}, nullptr, Lose(C::KeyWithoutValue)},
    {{K::NoValue}, {B::Constraints}, {}, nullptr, Refuse(kConstraintB)},
    {{K::NoValue}, {B::NodalLoads}, {}, nullptr, Refuse(kLoadD)},
    {{K::NoValue}, {}, {}, nullptr, Refuse(kPressureItem)},
};

bool Fits(const Rule& rule, const Site& site)
{
  return rule.kinds.Has(site.kind) && rule.blocks.Has(site.OwnBlock()) &&
         rule.places.Has(site.place) && (!rule.when || rule.when(site));
}

std::string Filled(const char* message, const Site& site)
{
  std::string filled;
  for (; *message; ++message) {
    if (*message == '%')
      filled += site.FirstWord();
    else if (*message == '$')
      filled += site.form.substr(0, site.form.find(' ', 1)).substr(site.form[0] == ' ' ? 1 : 0);
    else
      filled += *message;
  }
  return filled;
}

}  // namespace

std::optional<Expected> ExpectedOf(const Site& site)
{
  const Rule* rule = std::find_if(std::begin(kRules), std::end(kRules),
                                  [&](const Rule& r) { return Fits(r, site); });
  if (rule == std::end(kRules))
    return std::nullopt;
  const Result& result = rule->result;
  return Expected{result.outcome, Filled(result.message, site), result.code};
}

}  // namespace morlen::variants
