#include "problem/pressure_load.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <numbers>
#include <string>
#include <vector>

#include "model/elem.h"
#include "model/units.h"
#include "numeric/matriu.h"
#include "problem/beam_span.h"
#include "problem/loads_on_element.h"
#include "support/fatal.h"
#include "support/frame.h"
#include "support/loaded_beams.h"
#include "support/reference_frame.h"
#include "support/solved.h"

namespace morlen {

namespace {

using Doubles = std::vector<double>;
using enum PreassureLT_type;

constexpr PreassureLT_type kTypes[] = {Local, Global, GlobalProjected, Face};

Doubles ValuesOf(const PreassureLT& load)
{
  return {load.values, load.values + 6};
}

struct ReadLoad
{
  Doubles values;
  int face;
};

ReadLoad ReadRecord(PreassureLT_type type, PROBLEMTYPE problem, ElemType elemType,
                    const std::string& text, const Units& units = {})
{
  PreassureLT load(type);
  load.ReadYourLoad(7, problem, text.c_str(), units, elemType);
  return {ValuesOf(load), load.face};
}

void ExpectRefused(PreassureLT_type type, PROBLEMTYPE problem, ElemType elemType,
                   const std::string& text, const std::string& message)
{
  SCOPED_TRACE(text);
  ExpectFatal([&] { ReadRecord(type, problem, elemType, text); }, message);
}

const char* const kTooFew = "Not reading correctly preassure_loads. ElemNum=7\n";
const char* const kWrongItem = "Not reading correctly the preassure_loads. ElemNum=7\n";

// Results are in N and m, records in kN and m unless they name N_mm or N_m.
Units KiloNewtons()
{
  Units units;
  const UnitsBase bases[] = {{.name = "N_mm", .facN = 1.0, .facM = 0.001},
                             {.name = "N_m", .facN = 1.0, .facM = 1.0}};
  units.AddUnitsBase(bases, 2);
  units.matLoadForce = 1000.0;
  return units;
}

// A load on the only beam of a problem in the beam's axes: axial, along y', along z', torque.
Doubles OnBeam(const ProblemParts& parts, PreassureLT_type type,
               const std::array<double, 4>& values)
{
  PreassureLT load(type);
  std::copy(values.begin(), values.end(), load.values);
  const auto problem = ReadProblemText(parts.Text());
  Matriu T;
  const BeamSpan beam = MakeSpan(*problem, *problem->GiveElem(1), T);
  SpanLoad sum;
  load.AddToSpanLoad(beam, sum);
  EXPECT_EQ(sum.strain, 0.0);
  return {sum.q, sum.q + 4};
}

// Along (0.6, 0.8), y' = (-0.8, 0.6).
ProblemParts PlaneBeam()
{
  return ProblemParts().With(&ProblemParts::coordinates, "1 1 1\n2 4 5");
}

// Along (0.48, 0.64, 0.6), y' = (-0.8, 0.6, 0), z' = (-0.36, -0.48, 0.8).
ProblemParts TiltedBeam()
{
  return SpaceProblem().With(&ProblemParts::coordinates, "1 1 2 3\n2 3.4 5.2 6");
}

}  // namespace

TEST(PreassureLT, IsZeroAtFirst)
{
  for (const PreassureLT_type type : kTypes) {
    const PreassureLT load(type);
    EXPECT_EQ(load.type, type);
    EXPECT_EQ(ValuesOf(load), Doubles(6, 0.0));
    EXPECT_EQ(load.face, -1);
    EXPECT_EQ(load.Next(), nullptr);
  }
  EXPECT_EQ(static_cast<int>(Local), 0);
  EXPECT_EQ(static_cast<int>(Global), 1);
  EXPECT_EQ(static_cast<int>(GlobalProjected), 2);
  EXPECT_EQ(static_cast<int>(Face), 3);
}

TEST(PreassureLT, ReadsTheNumbersOfItsProblemTypeAndElementType)
{
  static const struct
  {
    PreassureLT_type type;
    PROBLEMTYPE problem;
    ElemType elemType;
    const char* text;
    Doubles values;
    int face;
  } cases[] = {
      {Local, kPlane, Linear, " 1 -2", {1, -2, 0, 0, 0, 0}, -1},
      {Global, kPlane, Linear, "\t1.5 2e1 ", {1.5, 20, 0, 0, 0, 0}, -1},
      {GlobalProjected, kPlane, Linear, " 1 2", {1, 2, 0, 0, 0, 0}, -1},
      {Face, kPlane, Linear, " 1 2", {1, 2, 0, 0, 0, 0}, -1},
      {Local, kSpace, Linear, " 1 2 3 4", {1, 2, 3, 4, 0, 0}, -1},
      {Local, kSpace, Linear, " 1 2 3", {1, 2, 3, 0, 0, 0}, -1},
      {Local, kSpace, Linear, " 1 2 3 unit 4", {1, 2, 3, 0, 0, 0}, -1},
      {Local, kSpace, Triangle, " 1 2 3", {1, 2, 3, 0, 0, 0}, -1},
      {Global, kSpace, Linear, " 1 2 3", {1, 2, 3, 0, 0, 0}, -1},
      {GlobalProjected, kSpace, Triangle, " 1 2 3", {1, 2, 3, 0, 0, 0}, -1},
      {Face, kSpace, Triangle, " 2 1 2 3", {1, 2, 3, 0, 0, 0}, 2},
      {Face, kSpace, Triangle, " 1 2 3", {1, 2, 3, 0, 0, 0}, -1},
      {Face, kSpace, Triangle, " .5 2 3", {0.5, 2, 3, 0, 0, 0}, -1},
      {Face, kSpace, Tetrahedra, " 3 1 2 3", {1, 2, 3, 0, 0, 0}, 3},
      {Global, kSpace, Tetrahedra, " -1 1 2 3", {1, 2, 3, 0, 0, 0}, -1},
      {Local, kSpace, Tetrahedra, " 0x1 1 2 3", {1, 2, 3, 0, 0, 0}, 1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    const ReadLoad load = ReadRecord(c.type, c.problem, c.elemType, c.text);
    EXPECT_EQ(load.values, c.values);
    EXPECT_EQ(load.face, c.face);
  }
}

// A face and three values, else exactly the two values of a plane problem, over the volume.
TEST(PreassureLT, SolidsOfA2dHeaderTakeAFaceOrTwoValues)
{
  static const struct
  {
    const char* text;
    Doubles values;
    int face;
  } cases[] = {
      {" 2 1 2 3", {1, 2, 3, 0, 0, 0}, 2},
      {" -1 1 2 3", {1, 2, 3, 0, 0, 0}, -1},
      {"\t0\t.5 2 3 name=top", {0.5, 2, 3, 0, 0, 0}, 0},
      {" 1 2", {1, 2, 0, 0, 0, 0}, -1},
      {" 1.5 2.5", {1.5, 2.5, 0, 0, 0, 0}, -1},
      {" 1.5 2.5 name=4", {1.5, 2.5, 0, 0, 0, 0}, -1},
      {" 1 2 # 3", {1, 2, 0, 0, 0, 0}, -1},
  };
  for (const PreassureLT_type type : kTypes) {
    for (const auto& c : cases) {
      SCOPED_TRACE(c.text);
      const ReadLoad load = ReadRecord(type, kPlane, Tetrahedra, c.text);
      EXPECT_EQ(load.values, c.values);
      EXPECT_EQ(load.face, c.face);
    }
    for (const char* text :
         {"", " 1", " 1 2 3", " 1.5 2.5 3.5", " 1.5 2.5 3.5 4.5", " 1 2 x=1 y", " 1 2,5 3 4",
          " 1 10,0 0 0", " 1 1d1 0 0", " 1 10kN", " 1 10 kN", " 1.0 10 0 0", " 1 10 , 0 0 0"})
      EXPECT_NE(FatalCaught([&] { ReadRecord(type, kPlane, Tetrahedra, text); }),
                "(the run went on)")
          << text;
    for (const char* text : {" 1.5 2.5 3.5", " 1 10,0 0 0", " 1 10 kN", " 1.0 10 0 0"})
      ExpectRefused(type, kPlane, Tetrahedra, text, kTooFew);
  }
  // With a 3d header the face ends where its digits end.
  EXPECT_EQ(ReadRecord(Global, kSpace, Tetrahedra, " 1.5 2 3").face, 1);
}

TEST(PreassureLT, TooFewNumbersAreRefused)
{
  for (const PreassureLT_type type : kTypes) {
    for (const char* text : {"", " 1", " 1 x", " x 1"})
      ExpectRefused(type, kPlane, Linear, text, kTooFew);
    for (const char* text : {"", " 1 2", " 1 2 x"})
      ExpectRefused(type, kSpace, Triangle, text, kTooFew);
    for (const char* text : {"", " 1 2 3", " .5 1 2 3"})
      ExpectRefused(type, kSpace, Tetrahedra, text, kTooFew);
  }
  ExpectRefused(Local, kSpace, Linear, " 1 2", kTooFew);
  ExpectRefused(Global, kSpace, Linear, " 1 2 units=kN", kTooFew);
}

TEST(PreassureLT, FaceLoadsOnBeamsInSpaceAreRefused)
{
  for (const char* text : {" 1 1 2 3", " 1 2 3", ""})
    ExpectRefused(Face, kSpace, Linear, text,
                  "error: applying a shell load to a beam element. ElemNum=7\n");
}

TEST(PreassureLT, UnknownElementsAreRefused)
{
  for (const ElemType elemType : {Quadrilateral, Hexahedra})
    ExpectRefused(Local, kSpace, elemType, " 1 2 3",
                  "error: Unknown elem type in PreassureLT::ReadYourLoad\n");
}

TEST(PreassureLT, ReadsItemsAfterTheNumbers)
{
  EXPECT_EQ(ReadRecord(Local, kPlane, Linear, " 1 2 name=roof x: 3 y 4").values,
            (Doubles{1, 2, 0, 0, 0, 0}));
  ExpectRefused(Local, kPlane, Linear, " 1 2 units", kWrongItem);
  ExpectRefused(Local, kPlane, Linear, " 1 2 units=", kWrongItem);
  ExpectRefused(Local, kPlane, Linear, " 1 2 Euler1 0.3 Euler1", kWrongItem);
  ExpectRefused(Local, kPlane, Linear, " 1 2 other", kWrongItem);
  for (const char* key : {"Euler4", "Euler0", "Euler", "eulerx"})
    ExpectRefused(Local, kPlane, Linear, std::string(" 1 2 ") + key + "=1",
                  "error: Euler angles must be: Euler1,Euler2 or Euler3\n");
  ExpectRefused(Local, kPlane, Linear, " 1 2 units=stone",
                "error: Unit name 'stone' has not been previously defined\n");
}

TEST(PreassureLT, EulerAnglesRotateTheValues)
{
  static const Vector3 kAngles = {0.4, 1.1, -0.7};
  const auto axes = AxesOfAngles(kAngles);
  Doubles expected(6, 0.0);
  for (int k = 0; k < 3; ++k)
    expected[k] = 1 * axes[0][k] - 2 * axes[1][k] + 3 * axes[2][k];
  const char* items = " Euler1=0.4 EULER2: 1.1 euler3 -0.7";
  for (const PreassureLT_type type : {Local, Global, GlobalProjected})
    ExpectValues(ReadRecord(type, kSpace, Linear, std::string(" 1 -2 3") + items).values, expected,
                 1e-15);
  ExpectValues(ReadRecord(Face, kSpace, Triangle, std::string("1 1 -2 3") + items).values, expected,
               1e-15);
  // The torque of a local load is not rotated.
  expected[3] = 5;
  ExpectValues(ReadRecord(Local, kSpace, Linear, std::string(" 1 -2 3 5") + items).values, expected,
               1e-15);
  // In a plane problem the z component is compared with the size of the load.
  ExpectRefused(Global, kPlane, Linear, " 3e-20 4e-20 Euler2=0.5",
                "error: Local z axe must be (0,0,1) for 2D problems.Element:7\n");
  ExpectValues(
      ReadRecord(Global, kPlane, Linear, " 3e20 4e20 Euler2=" + Digits(std::numbers::pi)).values,
      {3e20, -4e20, 0, 0, 0, 0}, 1e-15);
  // In a plane problem: a quarter turn clockwise.
  ExpectValues(
      ReadRecord(Global, kPlane, Linear, " 3 4 Euler1=" + Digits(std::numbers::pi / 2)).values,
      {4, -3, 0, 0, 0, 0}, 1e-15);
}

TEST(PreassureLT, AnglesThatLeaveThePlaneAreRefused)
{
  ExpectRefused(Global, kPlane, Linear, " 3 4 Euler2=0.5",
                "error: Local z axe must be (0,0,1) for 2D problems.Element:7\n");
  // A rotation about the direction of the load keeps it in the plane.
  ExpectValues(ReadRecord(Global, kPlane, Linear, " 3 0 Euler2=0.5").values, {3, 0, 0, 0, 0, 0},
               1e-15);
}

TEST(PreassureLT, UnitFactorDependsOnTheElementType)
{
  const Units units = KiloNewtons();
  static const struct
  {
    PreassureLT_type type;
    ElemType elemType;
    const char* text;
    double plain, inMillimetres;  // factors without units and with N_mm
  } cases[] = {
      {Local, Linear, " 1 2 3 4", 1000, 1000},      {Global, Linear, " 1 2 3", 1000, 1000},
      {Local, Triangle, " 1 2 3", 1000, 1e6},       {Face, Triangle, " 1 2 3", 1000, 1e6},
      {Face, Triangle, " 2 1 2 3", 1000, 1000},     {Face, Tetrahedra, " 2 1 2 3", 1000, 1e6},
      {Global, Tetrahedra, " -1 1 2 3", 1000, 1e6},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    const Doubles raw = ReadRecord(c.type, kSpace, c.elemType, c.text).values;
    const auto expectFactor = [&](const std::string& items, double factor) {
      Doubles expected = raw;
      for (double& value : expected)
        value *= factor;
      ExpectValues(ReadRecord(c.type, kSpace, c.elemType, c.text + items, units).values, expected,
                   1e-14);
    };
    expectFactor("", c.plain);
    expectFactor(" units=N_m", 1.0);
    expectFactor(" UNITS: N_mm", c.inMillimetres);
    expectFactor(" units N_m units=N_mm", c.inMillimetres);
  }
}

TEST(PreassureLT, WeightFollowsGravity)
{
  PreassureLT weight(Global);
  weight.EnterWeight(10.0, {0.6, 0.0, -0.8}, kSpace);
  ExpectValues(ValuesOf(weight), {6, 0, -8, 0, 0, 0}, 1e-15);
  weight.EnterWeight(5.0, {0.6, -0.8, 0.0}, kPlane);
  ExpectValues(ValuesOf(weight), {3, -4, 0, 0, 0, 0}, 1e-15);
  // A component along -z is left out.
  weight.EnterWeight(5.0, {0.0, -0.8, -0.6}, kPlane);
  ExpectValues(ValuesOf(weight), {0, -4, 0, 0, 0, 0}, 1e-15);
  weight.EnterWeight(5.0, {0.0, -1.0, 1e-15}, kPlane);
  ExpectValues(ValuesOf(weight), {0, -5, 0, 0, 0, 0}, 1e-15);
  for (const double z : {1.0, 1e-14})
    ExpectFatal(
        [&] {
          weight.EnterWeight(5.0, {0.0, -1.0, z}, kPlane);
        },
        "error: for 2D problems GravityDirection_Z must be 0.0\n");
}

TEST(PreassureLT, LocalValuesAreNotRotated)
{
  ExpectValues(OnBeam(TiltedBeam(), Local, {1, -2, 3, 4}), {1, -2, 3, 4}, 1e-15);
  ExpectValues(OnBeam(PlaneBeam(), Local, {1, -2}), {1, -2, 0, 0}, 1e-15);
}

TEST(PreassureLT, GlobalValuesAreRotatedToTheBeamAxes)
{
  ExpectValues(OnBeam(TiltedBeam(), Global, {0, 0, -10}), {-6, 0, -8, 0}, 1e-14);
  ExpectValues(OnBeam(TiltedBeam(), Global, {5, 0, 0}), {2.4, -4, -1.8, 0}, 1e-14);
  for (const PreassureLT_type type : {Global, Face})
    ExpectValues(OnBeam(PlaneBeam(), type, {0, -10}), {-8, -6, 0, 0}, 1e-14);
}

TEST(PreassureLT, ProjectedValuesActOnTheProjectedLength)
{
  // Both beams are 5 long. Their lengths in plan are 4 in space and 3 in the plane problem.
  ExpectValues(OnBeam(TiltedBeam(), GlobalProjected, {0, 0, -10}), {-4.8, 0, -6.4, 0}, 1e-14);
  ExpectValues(OnBeam(PlaneBeam(), GlobalProjected, {0, -10}), {-4.8, -3.6, 0, 0}, 1e-14);
  // A load along x acts on the rise of 4.
  ExpectValues(OnBeam(PlaneBeam(), GlobalProjected, {10, 0}), {4.8, -6.4, 0, 0}, 1e-14);
  // A load at right angles to the beam acts on its whole length.
  ExpectValues(OnBeam(PlaneBeam(), GlobalProjected, {-8, 6}), {0, 10, 0, 0}, 1e-14);
}

TEST(PreassureLT, ABeamAlongAProjectedLoadCarriesNone)
{
  for (const char* second : {"4 5", "1.1 1.1333333333333333", "1e5 133333"}) {
    const auto parts =
        PlaneBeam().With(&ProblemParts::coordinates, std::string("1 1 1\n2 ") + second);
    const Doubles q = OnBeam(parts, GlobalProjected, {3e5, 4e5});
    ExpectValues(q, {0, 0, 0, 0}, 1e-9, 5e5);
  }
  const auto upright = SpaceProblem().With(&ProblemParts::coordinates, "1 0 0 0\n2 0 0 3");
  EXPECT_EQ(OnBeam(upright, GlobalProjected, {0, 0, -10}), Doubles(4, 0.0));
}

TEST(PreassureLT, TinyProjectedLoadsAreProjectedToo)
{
  ExpectValues(OnBeam(TiltedBeam(), GlobalProjected, {0, 0, -1e-20}), {-4.8e-21, 0, -6.4e-21, 0},
               1e-14);
}

TEST(PreassureLT, AProjectedLoadOfZeroIsZero)
{
  EXPECT_EQ(OnBeam(PlaneBeam(), GlobalProjected, {0, 0}), Doubles(4, 0.0));
}

TEST(TemperatureLT, ReadsTwoNumbers)
{
  TemperatureLT load;
  load.ReadYourLoad(7, kPlane, " 1.2e-5 30 and more", KiloNewtons(), Linear);
  EXPECT_EQ(load.values[0], 1.2e-5);
  EXPECT_EQ(load.values[1], 30.0);
  for (const char* text : {"", " 1", " x 1", " 1 x"})
    ExpectFatal([&] { load.ReadYourLoad(7, kSpace, text, {}, Linear); },
                "Not reading correctly temperature_loads. ElemNum=7\n");
}

}  // namespace morlen
