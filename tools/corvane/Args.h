/// Strict parsing of the main program's numeric arguments: the whole text
/// must be the number and the number must lie in the range asked for.
/// Nothing is wrapped, clamped or guessed ("4294967297" is no 1, "12px" no
/// 12, "" no 0), so a mistyped argument is refused instead of used.
#ifndef _CORVANE_ARGS_H_
#define _CORVANE_ARGS_H_

namespace corvane
{

/// A decimal unsigned integer: digits only (no sign, blank, base prefix or
/// suffix), between min and max inclusive. False, leaving out untouched,
/// otherwise.
bool parseUInt(const char *text, unsigned min, unsigned max, unsigned &out);

/// A finite decimal number ("1", "-0.5", "2.5e3"; no blanks, hex, inf or
/// nan) between min and max inclusive. False, leaving out untouched,
/// otherwise.
bool parseFloat(const char *text, float min, float max, float &out);

} // namespace corvane

#endif
