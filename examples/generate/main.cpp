#include <cstdio>
#include <exception>
#include <fstream>

#include "examples/generate/Bridge.h"
#include "examples/generate/Plate.h"
#include "examples/generate/Pump.h"
#include "examples/generate/Rolls.h"

namespace {

bool Write(const std::string& fileName, const std::string& text) {
  std::ofstream file(fileName, std::ios::binary);
  file << text;
  file.close();
  if (!file) std::fprintf(stderr, "Cannot write %s\n", fileName.c_str());
  return static_cast<bool>(file);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(
        stderr,
        "Usage: %s FOLDER\nWrites the example models and data, and below values/ the record of a\n"
        "pump, into the folder.\n",
        argv[0]);
    return 2;
  }
  bool written = Write(std::string(argv[1]) + "/values/pump.txt", MakePumpRecord());
  for (const TExample& example : {MakePlate(), MakeBridge(), MakeRolls()}) {
    const std::string base = std::string(argv[1]) + '/' + example.name;
    written &= Write(base + ".mod", example.model) && Write(base + ".dat", example.data);
  }
  return written ? 0 : 1;
}
