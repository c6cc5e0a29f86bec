// The rows of a listing as text: "0x", the offset in at least three digits, two blanks, a cell of three
// characters for each of sixteen bytes, four blanks and the bytes as characters, '.' for those that are not
// printable ASCII. Digits are capitals.

#ifndef TROVISK_FRAME_REPORT_HEX_ROWS_H
#define TROVISK_FRAME_REPORT_HEX_ROWS_H

#include "frame/bytes.h"
#include "frame/report/hex_row_layout.h"

namespace trovisk {

// Each of these writes rows, the first of which has that offset, and gives the place behind the last line
// end. They need kRowText characters of room for each row.

// Whole rows of bytes; what is left at the end, less than a row, is not written.
char* PutRows(char* out, Bytes bytes, std::size_t offset);

// One row whose bytes end early: blanks for the missing cells, nothing for the missing characters.
char* PutShortRow(char* out, Bytes row, std::size_t offset);

// The two ways of PutRows: for any processor, and for those with AVX2, which PutRows takes where it can.
// PutRowsByAvx2 is for processors of which HasAvx2 is true; that is false where the program is built for
// others or by compilers without it.
char* PutRowsByTable(char* out, Bytes bytes, std::size_t offset);
char* PutRowsByAvx2(char* out, Bytes bytes, std::size_t offset);
bool HasAvx2();

}  // namespace trovisk

#endif
