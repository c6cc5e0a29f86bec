// The bound for starting the program: one that prints a line.

#include <stdio.h>

int main(void) {
  puts("Usage disk# [first_sector#] [LastSector#]");
  return 0;
}
