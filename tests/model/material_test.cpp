#include "model/material.h"

#include <cmath>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "base/errorwriter.h"
#include "base/textscan.h"
#include "model/material_symmetry.h"
#include "model/units.h"
#include "numeric/matriu.h"
#include "numeric/matriu_arithmetic.h"
#include "support/fatal.h"

namespace morlen {

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// Results are in kN and m, records without units in N and mm; the system "kN-m" is defined.
Units TestUnits()
{
  const UnitsBase base{"kN-m", "kN", "m", "kPa", 1000.0, 1.0};
  Units units;
  units.AddUnitsBase(&base, 1);
  units.matLoadForce = 1.0;
  units.matLoadLength = 0.001;
  units.resForce = 1000.0;
  units.resLength = 1.0;
  return units;
}

Material Read(const char* record)
{
  const Units units;
  Material material;
  material.ReadFromAsciiNoNum(record, &units);
  return material;
}

Material Isotropic(double E, double nu)
{
  Material m;
  m.E1 = m.E2 = E;
  m.nuXY = m.nuYX = nu;
  m.Gxy = m.Gxz = m.Gyz = E / (2.0 * (1.0 + nu));
  m.t = 0.1;
  return m;
}

std::vector<double> Values(const Material& m)
{
  return {m.E1, m.E2, m.nuXY, m.nuYX, m.Iy, m.Iz, m.Gxy, m.Gxz, m.Gyz, m.J, m.A, m.Weight, m.t};
}

TEST(Material, BeginsWithZeros)
{
  const Material m;
  EXPECT_EQ(Values(m), std::vector<double>(13, 0.0));
  EXPECT_EQ(m.number, 0);
  EXPECT_EQ(m.eulerGiven, 0);
}

TEST(Material, RecordSetsFields)
{
  static const struct
  {
    const char* record;
    double Material::*field;
    double expected;
  } cases[] = {
      {"E=2.1e11", &Material::E1, 2.1e11},
      {"E=2.1e11", &Material::E2, 2.1e11},
      {"E 2.1e11", &Material::E2, 2.1e11},
      {"E: 2.1e11", &Material::E1, 2.1e11},
      {"  e = 2.1e11\r", &Material::E1, 2.1e11},
      {"Ex=3 Ey=4", &Material::E1, 3.0},
      {"Ex=3 Ey=4", &Material::E2, 4.0},
      {"ex=3", &Material::E1, 3.0},
      {"eyoung=3", &Material::E2, 3.0},
      {"E=1 nu=0.3", &Material::nuXY, 0.3},
      {"E=1 NU=0.3", &Material::nuYX, 0.3},
      {"nu=0.3 nuXY=0.1", &Material::nuXY, 0.1},
      {"nu=0.3 NUxy=0.1", &Material::nuYX, 0.3},
      {"nuYXtoo=0.2", &Material::nuYX, 0.2},
      {"Iy=2", &Material::Iy, 2.0},
      {"iY=2", &Material::Iy, 2.0},
      {"Iz=2", &Material::Iz, 2.0},
      {"I=2", &Material::Iz, 2.0},
      {"inertia=2", &Material::Iz, 2.0},
      {"G=5", &Material::Gxy, 5.0},
      {"g=5", &Material::Gxz, 5.0},
      {"G=5 GYZ=6", &Material::Gyz, 6.0},
      {"gxyz=7", &Material::Gxy, 7.0},
      {"Gxz=7", &Material::Gxz, 7.0},
      {"J=3", &Material::J, 3.0},
      {"jota=3", &Material::J, 3.0},
      {"A=4", &Material::A, 4.0},
      {"area=4", &Material::A, 4.0},
      {"WEIGHTS=9", &Material::Weight, 9.0},
      {"t=0.1", &Material::t, 0.1},
      {"thick=0.1", &Material::t, 0.1},
      {"A=-4", &Material::A, -4.0},
      {"A=1 A=2", &Material::A, 2.0},
      {"A=x", &Material::A, 0.0},
      {"A=nan", &Material::A, 0.0},
      {"A=1e999", &Material::A, 0.0},
      {"A=2m2", &Material::A, 2.0},
  };
  for (const auto& c : cases)
    EXPECT_DOUBLE_EQ(Read(c.record).*c.field, c.expected) << c.record;
}

TEST(Material, RecordWithoutUnits)
{
  const Material m = Read("E=2e11 nu=0.3 A=0.01 Iz=8.3e-6");
  EXPECT_EQ(m.E1, 2e11);
  EXPECT_EQ(m.E2, 2e11);
  EXPECT_EQ(m.nuXY, 0.3);
  EXPECT_EQ(m.nuYX, 0.3);
  EXPECT_EQ(m.A, 0.01);
  EXPECT_EQ(m.Iz, 8.3e-6);
}

TEST(Material, KeysAreRefused)
{
  static const char* const young = "error in materials. Young Modulus can only be E, Ex or Ey\n";
  static const char* const inertia = "error in materials. Inertia modules cannot be for X axe\n";
  static const char* const shear = "error in materials. G can be: G Gxy Gxz or Gyz\n";
  static const char* const euler = "error: Euler angles must be: Euler1,Euler2 or Euler3\n";
  static const struct
  {
    const char* record;
    const char* message;
  } cases[] = {
      {"EX=1", young},
      {"eY=1", young},
      {"Ez=1", young},
      {"Ix=1", inertia},
      {"iX=1", inertia},
      {"Gzz=1", shear},
      {"Gx=1", shear},
      {"gyx=1", shear},
      {"Euler4 1", euler},
      {"Euler 1", euler},
      {"eulerx 1", euler},
      {"T=0.1", "Input of materials not correct. Unknown char: 'T'\n"},
      {"A=1 density=3", "Input of materials not correct. Unknown char: 'density'\n"},
      {"width=3", "Input of materials not correct. Unknown char: 'width'\n"},
      {"n=3", "Input of materials not correct. Unknown char: 'n'\n"},
      {"units=ft E=1", "error: Unit name 'ft' has not been previously defined\n"},
  };
  for (const auto& c : cases)
    ExpectFatal([&] { Read(c.record); }, c.message);
}

TEST(Material, EulerAnglesAreNotConverted)
{
  const Units units = TestUnits();
  Material m;
  EXPECT_EQ(m.ReadFromAsciiNoNum("Euler1 30", &units), 1);
  EXPECT_EQ(m.eulerGiven, 1);
  EXPECT_EQ(m.Euler[0], 30.0);
  EXPECT_EQ(m.Euler[1], 0.0);
  EXPECT_EQ(m.ReadFromAsciiNoNum("EULER2=0.5 euler3: 0.7", &units), 1);
  EXPECT_EQ(m.Euler[1], 0.5);
  EXPECT_EQ(m.Euler[2], 0.7);
}

TEST(Material, TabsAndCommentsSeparateItems)
{
  const UnitsBase base{"N_mm", "N", "mm", "MPa", 1.0, 1e-3};
  Units units;
  units.AddUnitsBase(&base, 1);
  for (const char* record :
       {"Iy=1\tWeight=25", "\tIy\t1\tWeight\t=\t25\t\r", "Iy=1 Weight=25 # note units N_mm",
        "Iy=1 Weight=25\t#units=N_mm Iy=7", "Iy=1 Weight=25\v\f", "Iy=1 Weight=25 #"}) {
    Material m;
    EXPECT_EQ(m.ReadFromAsciiNoNum(record, &units), 1) << record;
    EXPECT_EQ(m.Iy, 1.0) << record;
    EXPECT_EQ(m.Weight, 25.0) << record;
  }
  Material none;
  EXPECT_EQ(none.ReadFromAsciiNoNum(" # all is said elsewhere", &units), -1);
}

TEST(Material, ReaderTellsWhatItFound)
{
  static const struct
  {
    const char* record;
    int result;
    double A;
  } cases[] = {
      {"A=2", 1, 2.0}, {"", -1, 0.0},     {"  : =\r", -1, 0.0}, {"A", 0, 0.0},
      {"A=", 0, 0.0},  {"A=2 J", 0, 2.0}, {"A=2 J =", 0, 2.0},  {"widthY=1 widthZ=3 J", 0, 3.0}};
  const Units units;
  for (const auto& c : cases) {
    Material m;
    EXPECT_EQ(m.ReadFromAsciiNoNum(c.record, &units), c.result) << c.record;
    EXPECT_EQ(m.A, c.A) << c.record;
  }
}

TEST(Material, ValuesAreConverted)
{
  static const struct
  {
    const char* record;
    double Material::*field;
    double expected;
  } cases[] = {
      {"E=210000", &Material::E1, 2.1e8},  // N/mm2 to kN/m2
      {"Ey=210000", &Material::E2, 2.1e8},
      {"G=80000", &Material::Gxz, 8e7},
      {"Gyz=80000", &Material::Gyz, 8e7},
      {"A=1e4", &Material::A, 0.01},
      {"Iy=1e12", &Material::Iy, 1.0},
      {"I=1e12", &Material::Iz, 1.0},
      {"J=1e12", &Material::J, 1.0},
      {"t=20", &Material::t, 0.02},
      {"Weight=7.8e-5", &Material::Weight, 78.0},
      {"nu=0.3", &Material::nuYX, 0.3},
      {"widthY=200 widthZ=400", &Material::A, 0.08},
      {"E=2.1e8 units kN-m", &Material::E1, 2.1e8},
      {"Units: kN-m A=0.01", &Material::A, 0.01},
      {"t=0.02 UNITS=kN-m", &Material::t, 0.02},
      {"UnItS kN-m t=20", &Material::t, 0.02},  // not one of the three spellings
  };
  const Units units = TestUnits();
  for (const auto& c : cases) {
    Material m;
    EXPECT_EQ(m.ReadFromAsciiNoNum(c.record, &units), 1) << c.record;
    EXPECT_NEAR(m.*c.field, c.expected, 1e-13 * c.expected) << c.record;
  }
}

TEST(Material, WidthsWinOverSectionValues)
{
  for (const char* record :
       {"widthY 0.2 widthZ 0.4 A 1", "Iy=7 J=7 Iz=7 WIDTHy 0.2 A=7 widthz 0.4"}) {
    const Material m = Read(record);
    EXPECT_NEAR(m.A, 0.08, 1e-16);
    EXPECT_NEAR(m.Iy, 0.2 * 0.064 / 12.0, 1e-17);
    EXPECT_NEAR(m.Iz, 0.008 * 0.4 / 12.0, 1e-17);
    EXPECT_NEAR(m.J, 0.229 * 0.4 * 0.008, 1e-17);
  }
}

// One width gives no section: the values are those of the material.
TEST(Material, ALoneWidthOfAnElementGivesNothing)
{
  const Units units;
  Material base;
  base.A = base.Iy = base.Iz = base.J = 3.0;
  for (const char* items : {"widthY=1.6", "A=2 widthY=1.6", "widthZ=1.6"}) {
    Material own;
    own.SetToNegative();
    own.ReadFromAsciiNoNum(items, &units);
    own.ComposeMaterial(&base);
    for (double Material::*field : {&Material::A, &Material::Iy, &Material::Iz, &Material::J})
      EXPECT_EQ(own.*field, 3.0) << items;
  }
  EXPECT_LT(Read("A=2 widthY=1.6").A, 0.0);
}

TEST(Material, WidthYIsNeededForASection)
{
  EXPECT_EQ(Read("widthZ=0.4 A=1").A, 1.0);
  EXPECT_EQ(Read("widthY=0 widthZ=0.4 A=1").A, 1.0);
  EXPECT_EQ(Read("widthY=-0.2 widthZ=0.4 A=1").A, 1.0);
}

TEST(Material, TorsionCoefficientByRatio)
{
  static const struct
  {
    double ratio, beta;
  } cases[] = {{1.0, 0.141},  {1.2, 0.141},  {1.25, 0.196}, {1.5, 0.196},  {1.75, 0.229},
               {2.0, 0.229},  {2.25, 0.249}, {2.5, 0.249},  {2.75, 0.263}, {3.0, 0.263},
               {3.5, 0.281},  {4.0, 0.281},  {4.5, 0.291},  {5.0, 0.291},  {5.5, 0.299},
               {6.0, 0.299},  {6.5, 0.303},  {7.0, 0.303},  {7.5, 0.307},  {8.0, 0.307},
               {8.5, 0.31},   {9.0, 0.31},   {9.49, 0.31},  {9.5, 0.313},  {9.99, 0.313},
               {10.0, 0.333}, {50.0, 0.333}};
  for (const auto& c : cases) {
    Material m;
    m.CalcOtherParametersForRecSec(c.ratio, 1.0);
    EXPECT_NEAR(m.J, c.beta * c.ratio, 1e-12) << c.ratio;
    m.CalcOtherParametersForRecSec(1.0, c.ratio);
    EXPECT_NEAR(m.J, c.beta * c.ratio, 1e-12) << c.ratio;
  }
}

// The quotient of the widths depends on the unit in its last digits.
TEST(Material, TorsionOfASectionDoesNotDependOnTheUnit)
{
  static const struct
  {
    double widths[2], beta;
  } cases[] = {{{0.2, 0.35}, 0.229},
               {{0.28, 0.35}, 0.196},
               {{0.04, 0.11}, 0.263},
               {{0.06, 0.33}, 0.299},
               {{0.03, 0.3}, 0.333}};
  for (const auto& c : cases) {
    const auto [b, a] = c.widths;
    for (const double unit : {1.0, 10.0, 100.0, 1000.0, 1 / 0.3048, 1 / 0.0254, 1e-3}) {
      Material m;
      m.CalcOtherParametersForRecSec(b * unit, a * unit);
      const double size = unit * unit * unit * unit;
      // A few roundings of products; the next coefficient differs by more than 1e-2.
      EXPECT_NEAR(m.J / size, c.beta * a * b * b * b, 1e-14 * a * b * b * b) << b << ' ' << unit;
    }
  }
}

TEST(Material, RatiosWithinOneBillionthOfALimitAreOnIt)
{
  static const struct
  {
    double limit, below, above;
  } cases[] = {
      {1.25, 0.141, 0.196}, {1.75, 0.196, 0.229}, {9.5, 0.31, 0.313}, {10.0, 0.313, 0.333}};
  for (const auto& c : cases) {
    for (const double rest : {-1.1e-9, -0.9e-9, 0.0, 0.9e-9}) {
      const double ratio = c.limit * (1.0 + rest);
      Material m;
      m.CalcOtherParametersForRecSec(1.0, ratio);
      const double beta = rest < -1e-9 ? c.below : c.above;
      EXPECT_NEAR(m.J, beta * ratio, 1e-12) << c.limit << ' ' << rest;
    }
  }
}

TEST(Material, ReadsNumberedRecords)
{
  const Units units;
  TextScan scan("7 E=1 A=2\n  -8\n9 A=3\nend materials\n");
  Material a, b, c, d;
  EXPECT_EQ(a.ReadFromAscii(scan, &units), 1);
  EXPECT_EQ(b.ReadFromAscii(scan, &units), 1);
  EXPECT_EQ(c.ReadFromAscii(scan, &units), 1);
  EXPECT_EQ(d.ReadFromAscii(scan, &units), 0);
  EXPECT_EQ(a.number, 7);
  EXPECT_EQ(a.A, 2.0);
  EXPECT_EQ(b.number, -8);
  EXPECT_EQ(c.number, 9);
  EXPECT_EQ(c.A, 3.0);
  EXPECT_EQ(scan.ReadWord(), "end");
}

TEST(Material, OwnMaterialIsCompletedFromABase)
{
  Material base = Isotropic(2e11, 0.3);
  base.number = 2;
  base.eulerGiven = 1;
  base.Euler[1] = 0.4;
  const Units units;
  Material own;
  own.SetToNegative();
  EXPECT_EQ(Values(own), std::vector<double>(13, -1.0));
  own.ReadFromAsciiNoNum("t=0.02 A=0", &units);
  own.ComposeMaterial(&base);
  std::vector<double> expected = Values(base);
  expected.back() = 0.02;
  EXPECT_EQ(Values(own), expected);
  EXPECT_EQ(own.number, 0);
  EXPECT_EQ(own.eulerGiven, 1);
  EXPECT_EQ(own.Euler[1], 0.4);
}

// Also -1, the value of the numbers that are not given, and negative widths of a section.
TEST(Material, ItemsOfAnElementHoldWhateverTheirSign)
{
  static const struct
  {
    const char* items;
    double Material::*field;
    double expected;
  } cases[] = {
      {"nu=-0.2", &Material::nuXY, -0.2},
      {"nu=-0.2", &Material::nuYX, -0.2},
      {"nu=-1", &Material::nuYX, -1.0},
      {"nuXY=-0.1", &Material::nuXY, -0.1},
      {"nuXY=-0.1", &Material::nuYX, 3.0},
      {"Weight=-25", &Material::Weight, -25.0},
      {"E=-1", &Material::E2, -1.0},
      {"E=-1", &Material::A, 3.0},
      {"widthY=1 widthZ=-1", &Material::A, -1.0},
      {"widthY=12 widthZ=-1", &Material::Iy, -1.0},
      {"widthY=1 widthZ=2", &Material::Weight, 3.0},
      {"Euler1=-1", &Material::A, 3.0},
  };
  const Units units;
  Material base;
  base.E1 = base.E2 = base.nuXY = base.nuYX = base.A = base.Iy = base.Weight = 3.0;
  for (const auto& c : cases) {
    Material own;
    own.SetToNegative();
    own.ReadFromAsciiNoNum(c.items, &units);
    own.ComposeMaterial(&base);
    EXPECT_EQ(own.*c.field, c.expected) << c.items;
  }
}

TEST(Material, MarksAreClearedAndCopied)
{
  const Units units;
  Material base;
  base.Weight = 3.0;
  Material own;
  own.SetToNegative();
  own.ReadFromAsciiNoNum("Weight=-1", &units);
  Material copy(own);
  copy.ComposeMaterial(&base);
  EXPECT_EQ(copy.Weight, -1.0);
  own.SetToNegative();
  own.ComposeMaterial(&base);
  EXPECT_EQ(own.Weight, 3.0);
}

// A program that uses the library may assign to the members.
TEST(Material, AssignedValuesOtherThanMinusOneAreGiven)
{
  Material base;
  base.Weight = base.A = base.t = 3.0;
  Material own;
  own.SetToNegative();
  own.Weight = -1e-20;
  own.A = -25.0;
  own.ComposeMaterial(&base);
  EXPECT_EQ(own.Weight, -1e-20);
  EXPECT_EQ(own.A, -25.0);
  EXPECT_EQ(own.t, 3.0);
}

TEST(Material, OwnAnglesAndZerosAreKept)
{
  Material base = Isotropic(2e11, 0.3);
  base.eulerGiven = 1;
  base.Euler[0] = 0.4;
  const Units units;
  Material own;
  own.SetToNegative();
  own.ReadFromAsciiNoNum("nu=0 Euler2=1", &units);
  own.ComposeMaterial(&base);
  EXPECT_EQ(own.nuXY, 0.0);
  EXPECT_EQ(own.E1, 2e11);
  EXPECT_EQ(own.Euler[0], 0.0);
  EXPECT_EQ(own.Euler[1], 1.0);
}

TEST(Material, WithoutABaseMissingValuesAreZero)
{
  const Units units;
  Material own;
  own.SetToNegative();
  own.ReadFromAsciiNoNum("t=0.02", &units);
  own.ComposeMaterial(nullptr);
  std::vector<double> expected(13, 0.0);
  expected.back() = 0.02;
  EXPECT_EQ(Values(own), expected);
  EXPECT_EQ(own.eulerGiven, 0);
}

TEST(Material, CopyHasNoNumber)
{
  Material m = Isotropic(3.0, 0.2);
  m.number = 5;
  m.eulerGiven = 1;
  m.Euler[2] = 0.5;
  const Material copy(m);
  EXPECT_EQ(copy.number, 0);
  EXPECT_EQ(Values(copy), Values(m));
  EXPECT_EQ(copy.eulerGiven, 1);
  EXPECT_EQ(copy.Euler[2], 0.5);
}

TEST(Material, GivesBeamProductsAndAngles)
{
  Material m;
  m.E1 = 2.0;
  m.E2 = 100.0;
  m.Iy = 3.0;
  m.Iz = 5.0;
  m.A = 7.0;
  double EIy, EIz, EA;
  m.GiveEI(EIy, EIz, EA);
  EXPECT_EQ(EIy, 6.0);
  EXPECT_EQ(EIz, 10.0);
  EXPECT_EQ(EA, 14.0);

  double angles[3] = {9.0, 9.0, 9.0};
  Matriu T;
  EXPECT_EQ(m.GiveEulerAngles(angles), 1);
  EXPECT_EQ(angles[0], 9.0);
  EXPECT_EQ(m.CalcTransfMatFromEuler(T), 1);
  EXPECT_EQ(T.Size(), 0);
  m.eulerGiven = 1;
  EXPECT_EQ(m.GiveEulerAngles(angles), 0);
  EXPECT_EQ(angles[0], 0.0);
  EXPECT_EQ(m.CalcTransfMatFromEuler(T), 0);
  EXPECT_TRUE(AreVeryEqual(T, Matriu::I(3), 1e-15));
}

TEST(Material, PrintsOneLine)
{
  Material m;
  m.number = 3;
  m.E1 = 2.1e11;
  m.E2 = 1.0;
  m.nuXY = 0.25;
  m.nuYX = 0.5;
  m.Iy = 2.0;
  m.Iz = 3.0;
  m.Gxy = 4.0;
  m.Gxz = 5.0;
  m.Gyz = 6.0;
  m.J = 7.0;
  m.A = 1.0 / 3.0;
  m.Weight = 78000.0;
  m.t = 0.1;
  m.eulerGiven = 1;
  std::ostringstream out;
  m.PrintTo(out);
  EXPECT_EQ(out.str(),
            "3 E1=2.1e+11 E2=1 nuXY=0.25 nuYX=0.5 Iy=2 Iz=3 Gxy=4 Gxz=5 Gyz=6 J=7 A=0.333333 "
            "Weight=78000 t=0.1\n");
}

// The inverse of the membrane matrix is the compliance of plane stress: 1/E, -nu/E, 1/G.
TEST(Material, ShellMatrices)
{
  Material m;
  m.E1 = 40.0;
  m.E2 = 10.0;
  m.nuXY = 0.0625;
  m.nuYX = 0.25;
  m.Gxy = 3.0;
  m.Gxz = 4.0;
  m.Gyz = 5.0;
  m.t = 0.5;
  Matriu Dm(3, 3), Db(3, 3), Ds(2, 2);
  Dm = Db = 9.0;
  Ds = 9.0;
  m.GiveDMatrix(1, Dm, Db, Ds);

  Matriu compliance(3, 3);
  compliance = 0.0;
  compliance(1, 1) = 1.0 / m.E1;
  compliance(2, 2) = 1.0 / m.E2;
  compliance(1, 2) = -m.nuYX / m.E1;
  compliance(2, 1) = -m.nuXY / m.E2;
  compliance(3, 3) = 1.0 / m.Gxy;
  EXPECT_NEAR(compliance(1, 2), compliance(2, 1), 1e-16);
  const Matriu product = Dm * compliance;
  EXPECT_TRUE(AreVeryEqual(product, Matriu::I(3) * m.t, 1e-14));
  EXPECT_TRUE(AreVeryEqual(Db, Dm * (m.t * m.t / 12.0), 1e-15));
  EXPECT_NEAR(Ds(1, 1), 5.0 / 6.0 * 0.5 * 4.0, 1e-15);
  EXPECT_NEAR(Ds(2, 2), 5.0 / 6.0 * 0.5 * 5.0, 1e-15);
  EXPECT_EQ(Ds(1, 2), 0.0);
  EXPECT_EQ(Ds(2, 1), 0.0);
}

TEST(Material, ShellMatricesNeedTheirValues)
{
  static const struct
  {
    double Material::*field;
    double value;
    const char* message;
  } cases[] = {
      {&Material::t, 0.0, "error in element 12 Shell thickness is 0\n"},
      {&Material::t, -1.0, "error in element 12 Shell thickness is 0\n"},
      {&Material::t, kNaN, "error in element 12 Shell thickness is 0\n"},
      {&Material::E1, 0.0, "error in element 12 Ex is 0\n"},
      {&Material::E2, 0.0, "error in element 12 Ey is 0\n"},
      {&Material::Gxy, 0.0, "error in element 12 Gxy is 0\n"},
      {&Material::Gxz, 0.0, "error in element 12 Gxz is 0\n"},
      {&Material::Gyz, kNaN, "error in element 12 Gyz is 0\n"},
      {&Material::nuXY, 1.0, "error in element 12 nuXY is 1\n"},
      {&Material::nuYX, 1.0, "error in element 12 nuYX is 1\n"},
      {&Material::nuYX, kNaN, "error in element 12 nuYX is 1\n"},
      {&Material::nuYX, 0.2, "error in element 12 Ex*nuXY must be equal to Ey*nuYX\n"},
  };
  Matriu Dm(3, 3), Db(3, 3), Ds(2, 2);
  for (const auto& c : cases) {
    Material m = Isotropic(1e11, 0.3);
    m.*c.field = c.value;
    ExpectFatal([&] { m.GiveDMatrix(12, Dm, Db, Ds); }, c.message);
    const bool isExplained =
        errorwriter.Hint() == "t is -1 in the units of the results; it must be above 0";
    EXPECT_EQ(isExplained, c.value < 0.0);
  }
  ExpectFatal([&] { Material().GiveDMatrix(12, Dm, Db, Ds); },
              "error in element 12 Shell thickness is 0\n");
  Material m = Isotropic(1e11, 0.1);
  m.E2 = 2e11;
  m.nuYX = 0.3;
  ExpectFatal([&] { m.GiveDMatrix(12, Dm, Db, Ds); },
              "error in element 12 Ex*nuXY must be equal to Ey*nuYX\n");
  m = Isotropic(1.0, 0.1);
  m.nuXY = m.nuYX = -1.0;
  ExpectFatal([&] { m.GiveDMatrix(12, Dm, Db, Ds); }, "error in element 12 nuXY*nuYX is 1\n");
}

TEST(Material, SmallValuesOfShellsCount)
{
  Matriu Dm(3, 3), Db(3, 3), Ds(2, 2);
  Material m = Isotropic(1e-16, 0.0);
  m.Gxy = m.Gxz = m.Gyz = 1e-17;
  m.t = 1e-18;
  m.GiveDMatrix(1, Dm, Db, Ds);
  EXPECT_DOUBLE_EQ(Dm(1, 1), 1e-34);
  EXPECT_DOUBLE_EQ(Dm(3, 3), 1e-35);
}

// The two products may differ by 1e-12 of the larger one, in any unit of the moduli.
TEST(Material, SymmetryIsJudgedInAnyUnit)
{
  for (const double unit : {1e-25, 1e-9, 1.0, 3.3e11}) {
    Material m = Isotropic(1.1 * unit, 0.21);
    m.E2 = 3.3 * unit;
    for (const double part : {-9e-13, 0.0, 9e-13}) {
      m.nuYX = 0.07 * (1.0 + part);
      EXPECT_TRUE(IsSymmetric(m)) << unit << " " << part;
    }
    for (const double part : {-1.1e-12, 1.1e-12, kNaN}) {
      m.nuYX = 0.07 * (1.0 + part);
      EXPECT_FALSE(IsSymmetric(m)) << unit << " " << part;
    }
  }
  Material m = Isotropic(1e-25, 0.0);
  EXPECT_TRUE(IsSymmetric(m));
  m.nuXY = 1e-3;
  EXPECT_FALSE(IsSymmetric(m));
}

// The inverse of the matrix is Hooke's law: 1/E, -nu/E, 2(1 + nu)/E.
TEST(Material, SolidMatrixInvertsHookesLaw)
{
  for (const double nu : {0.0, 0.3, 0.49, -0.5}) {
    const double E = 200.0;
    Matriu D(6, 6);
    D = 9.0;
    Isotropic(E, nu).GiveDMatrixTetra(1, D);
    Matriu compliance(6, 6);
    compliance = 0.0;
    for (int i = 1; i <= 3; ++i) {
      for (int j = 1; j <= 3; ++j)
        compliance(i, j) = (i == j ? 1.0 : -nu) / E;
      compliance(i + 3, i + 3) = 2.0 * (1.0 + nu) / E;
    }
    const Matriu product = D * compliance;
    EXPECT_TRUE(AreVeryEqual(product, Matriu::I(6), 1e-12)) << nu;
  }
}

TEST(Material, SolidMatrixNeedsItsValues)
{
  static const struct
  {
    double E, nu;
    const char* message;
  } cases[] = {
      {0.0, 0.3, "error in element 4 E is 0\n"},   {-5.0, 0.3, "error in element 4 E is 0\n"},
      {kNaN, 0.3, "error in element 4 E is 0\n"},  {1.0, 1.0, "error in element 4 nu is 1\n"},
      {1.0, kNaN, "error in element 4 nu is 1\n"}, {1.0, 0.5, "error in element 4 nu is 0.5\n"},
      {1.0, -1.0, "error in element 4 nu is -1\n"}};
  Matriu D(6, 6);
  for (const auto& c : cases) {
    Material m;
    m.E1 = c.E;
    m.nuXY = c.nu;
    ExpectFatal([&] { m.GiveDMatrixTetra(4, D); }, c.message);
  }
}

// A system of units with a force of 2 and a length of 3 shows every power of both.
TEST(Material, EveryKeyHasItsPowersOfForceAndLength)
{
  const double stress = 2.0 / 9.0;
  static const struct
  {
    const char* key;
    double Material::*field;
    double factor;
  } cases[] = {
      {"E", &Material::E1, stress},
      {"E", &Material::E2, stress},
      {"Ex", &Material::E1, stress},
      {"ex", &Material::E1, stress},
      {"Ey", &Material::E2, stress},
      {"ey", &Material::E2, stress},
      {"nu", &Material::nuXY, 1.0},
      {"nu", &Material::nuYX, 1.0},
      {"nuXY", &Material::nuXY, 1.0},
      {"nuYX", &Material::nuYX, 1.0},
      {"G", &Material::Gxy, stress},
      {"G", &Material::Gxz, stress},
      {"G", &Material::Gyz, stress},
      {"Gxy", &Material::Gxy, stress},
      {"Gxz", &Material::Gxz, stress},
      {"Gyz", &Material::Gyz, stress},
      {"Iy", &Material::Iy, 81.0},
      {"Iz", &Material::Iz, 81.0},
      {"I", &Material::Iz, 81.0},
      {"J", &Material::J, 81.0},
      {"A", &Material::A, 9.0},
      {"Weight", &Material::Weight, 2.0 / 27.0},
      {"t", &Material::t, 3.0},
      {"widthZ=1 widthY", &Material::A, 9.0},
      {"widthY=1 widthZ", &Material::A, 9.0},
  };
  Units units;
  units.matLoadForce = 2.0;
  units.matLoadLength = 3.0;
  for (const auto& c : cases) {
    Material m;
    EXPECT_EQ(m.ReadFromAsciiNoNum(std::string(c.key) + "=5", &units), 1) << c.key;
    EXPECT_DOUBLE_EQ(m.*c.field, 5.0 * c.factor) << c.key;
  }
}

// A beam of a few micrometres has a second moment of area of 1e-24 m^4.
TEST(Material, SmallValuesOfAnElementAreGiven)
{
  Material base;
  base.Iy = 3.0;
  base.J = 4.0;
  Material own;
  own.SetToNegative();
  own.Iy = 1e-24;
  own.ComposeMaterial(&base);
  EXPECT_EQ(own.Iy, 1e-24);
  EXPECT_EQ(own.J, 4.0);
  own.SetToNegative();
  own.Iy = 1e-24;
  own.ComposeMaterial(nullptr);
  EXPECT_EQ(own.Iy, 1e-24);
  EXPECT_EQ(own.J, 0.0);
}

constexpr const char* kSolidLimits = "error in element 4 nu must be above -1 and below 0.5\n";
constexpr const char* kShellLimits = "error in element 12 nu must be above -1 and at most 0.5\n";

TEST(Material, SolidsHaveRatiosBetweenMinusOneAndOneHalf)
{
  Matriu D(6, 6);
  for (const double nu : {3.0, 30.0, 0.7, 0.5 + 1e-12, -1.0 - 1e-12, -7.0, 1.0 + 1e-12}) {
    ExpectFatal([&] { Isotropic(2.0, nu).GiveDMatrixTetra(4, D); }, kSolidLimits);
    EXPECT_NE(errorwriter.Hint().find("nuXY="), std::string_view::npos) << nu;
  }
  for (const double nu : {0.5 - 1e-12, -1.0 + 1e-12}) {
    Isotropic(2.0, nu).GiveDMatrixTetra(4, D);
    EXPECT_GT(D(1, 1), 1e11) << nu;
  }
}

TEST(Material, IsotropicShellsHaveRatiosAboveMinusOneUpToOneHalf)
{
  Matriu Dm(3, 3), Db(3, 3), Ds(2, 2);
  for (const double nu : {3.0, 0.7, 0.5 + 1e-12, 1.0 + 1e-12, -1.0 - 1e-12, -3.0}) {
    Material m = Isotropic(2.0, nu);
    m.Gxy = m.Gxz = m.Gyz = 1.0;
    ExpectFatal([&] { m.GiveDMatrix(12, Dm, Db, Ds); }, kShellLimits);
  }
  for (const double nu : {0.5, 0.0, -0.9, -1.0 + 1e-12}) {
    Isotropic(2.0, nu).GiveDMatrix(12, Dm, Db, Ds);
    // 1 + nu has 4 digits left for the last ratio.
    EXPECT_NEAR(Dm(1, 1) * (1.0 - nu) * (1.0 + nu), 0.2, 1e-4) << nu;
  }
}

// With Ex = 4 Ey, nuYX = 4 nuXY: nuXY may reach 1/2.
TEST(Material, RatiosOfOrthotropicShellsHaveAProductBelowOne)
{
  Matriu Dm(3, 3), Db(3, 3), Ds(2, 2);
  const auto sheet = [](double nuXY) {
    Material m = Isotropic(4.0, 0.3);
    m.E2 = 1.0;
    m.nuXY = nuXY;
    m.nuYX = 4.0 * nuXY;
    return m;
  };
  for (const double nuXY : {0.51, 3.0, -0.51, 0.5 + 1e-12})
    ExpectFatal([&] { sheet(nuXY).GiveDMatrix(12, Dm, Db, Ds); },
                "error in element 12 nuXY*nuYX must be below 1\n");
  ExpectFatal([&] { sheet(0.5).GiveDMatrix(12, Dm, Db, Ds); },
              "error in element 12 nuXY*nuYX is 1\n");
  for (const double nuXY : {0.49, 0.3, -0.49}) {
    sheet(nuXY).GiveDMatrix(12, Dm, Db, Ds);
    EXPECT_NEAR(Dm(1, 1) * (1.0 - 4.0 * nuXY * nuXY), 0.4, 1e-15);
  }
  // The same modulus in both directions, but ratios that differ within the limit of symmetry.
  Material m = Isotropic(4.0, 0.6);
  m.nuYX = 0.6 * (1.0 + 5e-13);
  m.GiveDMatrix(12, Dm, Db, Ds);
  EXPECT_NEAR(Dm(1, 1), 0.4 / (1.0 - 0.36), 1e-12);
}

// The ratio of textbooks, -εy/εx under a stress along x, is nuYX.
TEST(Material, NuYXIsTheContractionAcrossAStressAlongX)
{
  Matriu Dm(3, 3), Db(3, 3), Ds(2, 2);
  Material m = Isotropic(40.0, 0.0);
  m.E2 = 10.0;
  m.nuXY = 0.05;
  m.nuYX = 0.2;
  m.GiveDMatrix(1, Dm, Db, Ds);
  const double ex = 1.0, ey = -m.nuYX * ex;
  EXPECT_NEAR(Dm(2, 1) * ex + Dm(2, 2) * ey, 0.0, 1e-15);
  EXPECT_NEAR(Dm(1, 1) * ex + Dm(1, 2) * ey, m.t * m.E1 * ex, 1e-14);
}

// Poisson's ratios are equal to a limit to 1e-15.
TEST(Material, PoissonRatiosAtTheirLimits)
{
  Matriu Dm(3, 3), Db(3, 3), Ds(2, 2), D(6, 6);
  for (const double rest : {5e-16, -5e-16}) {
    const double one = 1.0 + rest;
    ASSERT_NE(one, 1.0);
    ExpectFatal([&] { Isotropic(2.0, one).GiveDMatrix(12, Dm, Db, Ds); },
                "error in element 12 nuXY is 1\n");
    ExpectFatal([&] { Isotropic(2.0, one).GiveDMatrixTetra(4, D); },
                "error in element 4 nu is 1\n");
    ExpectFatal([&] { Isotropic(2.0, 0.5 + rest).GiveDMatrixTetra(4, D); },
                "error in element 4 nu is 0.5\n");
    ExpectFatal([&] { Isotropic(2.0, -one).GiveDMatrixTetra(4, D); },
                "error in element 4 nu is -1\n");
  }
}

TEST(Material, UnsetValuesHaveNoAngles)
{
  Material base;
  base.eulerGiven = 1;
  base.Euler[0] = 0.4;
  Material own;
  own.eulerGiven = 1;
  own.Euler[0] = 0.7;
  own.SetToNegative();
  EXPECT_EQ(own.eulerGiven, 0);
  own.ComposeMaterial(&base);
  EXPECT_EQ(own.eulerGiven, 1);
  EXPECT_EQ(own.Euler[0], 0.4);
}

}  // namespace

}  // namespace morlen
