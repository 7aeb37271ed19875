// Where the configuration store reads stored setting texts from.
#pragma once

#include <string>
#include <string_view>

namespace velantis {

class TKeyFile;

// A source of setting texts by section and key. Besides the two backends of
// the store (the key file and the registry), an application part may attach
// its own reader to the store (TConfig::AttachSecondaryReader), for example to
// serve a profile kept elsewhere.
class TConfigReader {
public:
  virtual ~TConfigReader() = default;
  // The stored text of the key and true, or false when the key is absent.
  virtual bool Read(const std::string& section, const std::string& key, std::string& text) = 0;
};

// The default passed to the key-file read, so that a missing key comes back as
// exactly this text; a key whose value is this text reads as absent.
inline constexpr std::string_view kConfigAbsentSentinel = "foca_noE";

// The buffer size the key-file read starts from, and the step it grows by (characters).
inline constexpr size_t kConfigReadBufferStartChars = 10;
inline constexpr size_t kConfigReadBufferStepChars = 10;

// Reads one key with the profile-string read: the buffer grows by one step and
// the key is read, grows by another step and is read again, and the passes
// repeat until both reads of a pass return the same length (the value fitted).
// Present when the text read is not the sentinel.
bool ReadKeyFileSetting(const TKeyFile& file, const std::string& section, const std::string& key,
                        std::string& text);

}  // namespace velantis
