// What every native-file fuzz target checks: whatever the reader accepts is
// written back with the matching writer (unless the writer refuses a value it
// cannot print) and read again; a file the writer produced must always read
// back, to as many points as it was written with.
#pragma once

#include <unistd.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "formats/native_file.h"
#include "fuzz/fuzz_failure.h"

namespace velantis::fuzz {

template <typename TElement, typename TRead, typename TWrite, typename TReadFile>
int NativeRoundTrip(const uint8_t* data, size_t size, const char* extension, TRead read, TWrite write,
                    TReadFile readFile) {
  static const std::string path = "/tmp/velantis_fuzz_" + std::to_string(getpid()) + "." + extension;
  const TNativeOptions options;
  TElement element;
  std::string error;
  if (!read(std::string_view(reinterpret_cast<const char*>(data), size), options, element, error)) return 0;
  if (!write(path, element, options, error)) return 0;
  TElement back;
  if (!readFile(path, options, back, error)) Fail("the written file does not read back: " + error, path);
  if (back.PointCount() != element.PointCount())
    Fail(std::to_string(element.PointCount()) + " points written, " + std::to_string(back.PointCount()) + " read back",
         path);
  return 0;
}

}  // namespace velantis::fuzz
