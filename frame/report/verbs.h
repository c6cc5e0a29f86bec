// The printing verbs that the decoders share. A plain number is report << value.

#ifndef TROVISK_FRAME_REPORT_VERBS_H
#define TROVISK_FRAME_REPORT_VERBS_H

#include <span>
#include <string>
#include <string_view>

#include "frame/bytes.h"
#include "frame/report/report.h"

namespace trovisk {

// Wide text as report << shows it.
std::string ToNarrow(WideText text);

// start, the sector, the description in brackets, a line end: what every report begins with. Of the
// description the first 256 characters.
void PrintSectorHeader(WideText description, u64 sector, std::string_view start = "Reading sector # ");

// A row of the table of contents: the sector in a column of ten characters, a tab, the description.
void PrintTocRow(u64 sector, std::string_view description);

// Characters of a name that is shown as it stands on the disk. '?' stands for what is not printable ASCII
// where control characters must not get through, so that a disk cannot send escape sequences to a terminal.
void PrintAsStored(std::string_view characters);

// The one byte of a report that goes out as it stands on the disk even on a terminal; in a report that is
// caught in a string, as PrintAsStored.
void PrintRawByte(u8 byte);

// A title on a line of its own and below it a line of hyphens, each led by indent. hyphens: how many, where
// they are not as many as the title has characters.
void PrintHeading(std::string_view title, std::string_view indent = "");
void PrintHeading(std::string_view title, std::size_t hyphens, std::string_view indent = "");

// On-disk text up to its first NUL or the view's end: printable ASCII as it is, <CR>, <LF>, others as <0xNN>.
void PrintChars(Bytes text);

// The same for at most count bytes; nothing for a count of zero or less.
void PrintCharsN(Bytes text, i64 count);

// Hexadecimal in capitals, at least width digits, zero-filled, both as many as 16; the report is in decimal
// afterwards.
void PrintHex(u64 value, std::size_t width);
inline void PrintHexByte(u8 value) {
  PrintHex(value, 2);
}

// The same, but the report stays in hexadecimal: numbers that follow come out so too.
void PrintHexStayingHex(u64 value, std::size_t width);

// The same, but the report's base is afterwards what it was before.
void PrintHexKeepingBase(u64 value, std::size_t width);

// A number in the report's base, at least width digits, zero-filled.
void PrintPadded(u64 value, std::size_t width);
inline void PrintTwoDigits(u64 value) {
  PrintPadded(value, 2);
}

// At most six significant digits, without an exponent below a million, whatever the report's base.
void PrintFraction(double value);

// Every byte as two digits with nothing between, in stored order; from the last to the first.
void PrintHexBytes(Bytes bytes);
void PrintReversedHexBytes(Bytes bytes);

// "[0x", two digits, "]" for each of the bytes: a boot sector's jump instruction.
void PrintBracketedHexBytes(Bytes bytes);

// A volume serial number, little-endian: all its digits and, in brackets, the low half as the operating
// systems show it: 1234567890ABCDEF (90AB-CDEF). serial: four bytes at least.
void PrintVolumeSerial(Bytes serial);

// The bytes as two digits and a blank each, sixteen to a line, later lines led by indent. No line end after
// the last.
void PrintSpacedHexBytes(Bytes bytes, std::string_view indent);

// A piece of boot code: an empty line, the title and its hyphens (so many) led by a tab, an empty line, the
// bytes led by tabs and an empty line.
void PrintCodeSection(std::string_view title, std::size_t hyphens, Bytes code);
inline void PrintCodeSection(std::string_view title, Bytes code) {
  PrintCodeSection(title, title.size(), code);
}

// "Error Message#", the number, the separator that ends in the opening bracket, the text as PrintChars shows
// it, " ]" and a line end.
void PrintErrorMessage(std::size_t number, std::string_view separator, Bytes text);

// A GUID in the mixed-endian on-disk layout, in its registry form without braces. Digits above 9 are
// capitals once a field in capitals has been printed, small letters before.
void PrintGuid(FixedBytes<16> guid);

// The 16 bytes in stored order, in capitals, grouped like a GUID.
void PrintStoredGuid(Bytes guid);

// A FILETIME (100 ns units since 1601-01-01 UTC) as local time, cut to 32 bits of seconds since 1970; the
// text ends in a newline of its own, so the line end that follows leaves an empty line.
void PrintFileTime(u64 fileTime);

// One UTF-16 code unit after the other, as UTF-8: NUL as a NUL byte, surrogate pairs combined, '?' for an
// unpaired one and for control characters, so that a disk cannot send escape sequences to a terminal.
// units: little-endian, two bytes each.
void PrintUtf16(Bytes units);

}  // namespace trovisk

#endif
