#include "frame/run.h"

int main(int argc, char** argv) {
  return trovisk::Run(argc, argv);
}
