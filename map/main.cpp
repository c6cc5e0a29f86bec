#include "map/command.h"

int main(int argc, char** argv) {
  return trovisk::RunMap(argc, argv);
}
