#pragma once

namespace morlen {

/// The end conditions of a beam in bending, written as two digits: the first digit is the first
/// end, the second digit the second end; 1 is continuous, 0 is hinged. So 11 is a beam without
/// hinges, 10 has a hinge at its second end, 1 ("01") at its first, 0 ("00") at both.
class HingeCode
{
public:
  constexpr HingeCode() = default;  ///< 11
  /// `value` must satisfy IsValid.
  constexpr explicit HingeCode(int value) : code(value) {}

  /// True for 11, 10, 1 and 0.
  static constexpr bool IsValid(int value)
  {
    return value == 11 || value == 10 || value == 1 || value == 0;
  }

  constexpr bool FirstHinged() const { return code / 10 == 0; }
  constexpr bool SecondHinged() const { return code % 10 == 0; }
  /// True when neither end is hinged.
  constexpr bool IsContinuous() const { return !FirstHinged() && !SecondHinged(); }

  /// This code with further hinges at the ends whose flag is set.
  constexpr HingeCode Merged(bool first, bool second) const
  {
    const int firstDigit = first || FirstHinged() ? 0 : 1;
    const int secondDigit = second || SecondHinged() ? 0 : 1;
    return HingeCode(10 * firstDigit + secondDigit);
  }

  /// The two digits as a number: 11, 10, 1 or 0.
  constexpr int Value() const { return code; }

  friend constexpr bool operator==(HingeCode, HingeCode) = default;

private:
  int code = 11;
};

}  // namespace morlen
