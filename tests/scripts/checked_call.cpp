// Copies a text of unknown length, which the library checks when it is told to.
#include <cstring>

int main(int argc, char** argv) {
  char copy[8] = "";
  if (argc > 1) std::strcpy(copy, argv[1]);
  return copy[0];
}
