// The printing verbs that the decoders share.
//
// The report goes through std::cout, and the formatting state of that stream is behaviour: a hexadecimal
// field sets its own base, width and fill and returns to decimal; a field in capitals switches the uppercase
// setting on for the rest of the run. Only the functions of this file and dump.cpp change that state. Decimal
// numbers are plain std::cout << value, and so follow the base in which the stream was left.

#ifndef TROVISK_FRAME_FIELDS_H
#define TROVISK_FRAME_FIELDS_H

#include <string>
#include <string_view>

#include "frame/bytes.h"
#include "frame/report.h"
#include "frame/toc.h"

namespace trovisk {

// Wide text to the C locale's narrow text, '?' for every character that it does not have; ends at a NUL.
std::string ToNarrow(WideText text);

// The same in place, and a number as the stream would print it, in its base and case, padded with blanks to
// the width. They need room for MB_LEN_MAX characters for each wide one and for the larger of kNumberText and
// the width for a number, and give the place behind the last character.
char* PutNarrow(char* out, WideText text);
inline constexpr std::size_t kNumberText = 20;
char* PutNumber(char* out, u64 value, std::size_t width = 0);

// "Reading sector # ", the sector, the description in brackets, a line end: what every report begins with.
void PrintSectorHeader(WideText description, u64 sector);

// Characters of a name that is shown as it stands on the disk. On a terminal '?' stands for what is not
// printable ASCII, so that a disk cannot send escape sequences to it.
void PrintAsStored(std::string_view characters);

// A title on a line of its own and below it a line of hyphens, each led by indent. hyphens: how many, where
// they are not as many as the title has characters.
void PrintHeading(std::string_view title, std::string_view indent = "");
void PrintHeading(std::string_view title, std::size_t hyphens, std::string_view indent = "");

// On-disk text up to its first NUL or the view's end: printable ASCII as it is, <CR>, <LF>, others as <0xNN>.
void PrintChars(Bytes text);

// The same for at most count bytes; nothing for a count of zero or less.
void PrintCharsN(Bytes text, i64 count);

// Hexadecimal in capitals, at least width digits, zero-filled; the stream is in decimal afterwards.
void PrintHex(u64 value, int width);
inline void PrintHexByte(u8 value) {
  PrintHex(value, 2);
}

// The same, but the stream stays in hexadecimal: numbers that follow come out so too.
void PrintHexStayingHex(u64 value, int width);

// The same, but the stream's base is afterwards what it was before.
void PrintHexKeepingBase(u64 value, int width);

// A number in the stream's base, at least width digits, zero-filled.
void PrintPadded(u64 value, int width);
inline void PrintTwoDigits(u64 value) {
  PrintPadded(value, 2);
}

// Every byte as two digits with nothing between, in stored order; from the last to the first.
void PrintHexBytes(Bytes bytes);
void PrintReversedHexBytes(Bytes bytes);

// "[0x", two digits, "]" for each of the bytes: a boot sector's jump instruction.
void PrintBracketedHexBytes(Bytes bytes);

// A volume serial number of 8 bytes, little-endian: sixteen digits and, in brackets, the low half as the
// operating systems show it: 1234567890ABCDEF (90AB-CDEF).
void PrintVolumeSerial(FixedBytes<8> serial);

// A tab and the bytes as two digits and a blank each, sixteen to a line, later lines led by a tab. No line
// end after the last.
void PrintCodeListing(Bytes code);

// A piece of boot code: an empty line, the title and its hyphens (so many) led by a tab, an empty line, the
// listing and an empty line.
void PrintCodeSection(std::string_view title, std::size_t hyphens, Bytes code);
inline void PrintCodeSection(std::string_view title, Bytes code) {
  PrintCodeSection(title, title.size(), code);
}

// "Error Message#", the number, the separator that ends in the opening bracket, the text as PrintChars shows
// it, " ]" and a line end.
void PrintErrorMessage(int number, std::string_view separator, Bytes text);

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
