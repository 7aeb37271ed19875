// NMEA sentences per second: the parser and the live handling on two real
// receiver captures (u-blox NEO-M9N and NEO-M8N, gpsd's regression logs:
// multi-constellation RMC, GGA, GSA, GSV, VTG, GLL, GST, GBS, ZDA), their
// header lines dropped and repeated in memory to about 3,000,000 sentences,
// beside gpsd's gpsdecode decoding the same bytes in the same run.
//
// - BM_Nmea_Parse: TComandaNMEA::Parse of every line into one sentence.
// - BM_Nmea_Live: TNmeaLiveHandler::Handle of every line into one fix
//   record (parse, checksum, dispatch, the position rules, satellites,
//   DOPs), on the system clock as in the live loop.
// - BM_Nmea_Gpsdecode: /usr/bin/gpsdecode (gpsd-clients) reading the bytes on
//   stdin through a pipe and writing its JSON reports to a pipe we drain.
//   Timed by its own CPU time (user + system, from the kernel's account of
//   the child), and by the wall clock around the child for reference.
//
// Ours are timed by the CPU time of the calling thread. At the end the
// rates and the ratio Velantis/gpsdecode (CPU time to CPU time) are printed.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "bench/bench_run.h"
#include "comm/nmea_live_handler.h"

namespace {

constexpr size_t kTargetSentences = 3'000'000;
constexpr char kGpsdecode[] = "/usr/bin/gpsdecode";
const char* const kCaptures[] = {"nmea/ublox-neo-m9n-nmea.log", "nmea/neo-m8n.log"};

std::string TestDataDir() {
  const char* folder = std::getenv("VELANTIS_TESTDATA");
  return folder != nullptr && *folder != '\0' ? folder : VELANTIS_DEFAULT_TESTDATA;
}

// The capture's bytes after its "#" header lines; empty when unreadable.
std::string CaptureBody(const std::string& path) {
  std::FILE* file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) return {};
  std::string bytes;
  char buffer[65536];
  size_t n = 0;
  while ((n = std::fread(buffer, 1, sizeof buffer, file)) > 0) bytes.append(buffer, n);
  std::fclose(file);
  size_t start = 0;
  while (start < bytes.size() && bytes[start] == '#') {
    const size_t end = bytes.find('\n', start);
    start = end == std::string::npos ? bytes.size() : end + 1;
  }
  return bytes.substr(start);
}

struct TStream {
  std::string bytes;
  std::vector<std::string_view> lines;
  std::string error;
};

const TStream& Stream() {
  static const TStream stream = [] {
    TStream s;
    std::string once;
    for (const char* capture : kCaptures) {
      const std::string body = CaptureBody(TestDataDir() + "/" + capture);
      if (body.empty()) {
        s.error = "test data not found: " + TestDataDir() + "/" + capture;
        return s;
      }
      once += body;
    }
    size_t perCopy = 0;
    for (const char c : once) perCopy += c == '\n';
    const size_t copies = (kTargetSentences + perCopy - 1) / perCopy;
    s.bytes.reserve(once.size() * copies);
    for (size_t i = 0; i < copies; ++i) s.bytes += once;
    s.lines.reserve(perCopy * copies);
    size_t start = 0;
    while (start < s.bytes.size()) {
      size_t end = s.bytes.find('\n', start);
      end = end == std::string::npos ? s.bytes.size() : end + 1;
      s.lines.emplace_back(s.bytes.data() + start, end - start);
      start = end;
    }
    return s;
  }();
  return stream;
}

struct TRates {
  double parse = 0, live = 0, gpsdecodeCpu = 0, gpsdecodeWall = 0;
};
TRates& Rates() {
  static TRates rates;
  return rates;
}

template <class TBody>
double MeasureCpu(benchmark::State& state, TBody body) {
  double total = 0;
  for (auto _ : state) {
    const double start = velantis::bench::ThreadCpuSeconds();
    body();
    total += velantis::bench::ThreadCpuSeconds() - start;
  }
  const auto sentences = static_cast<double>(state.iterations() * Stream().lines.size());
  state.SetItemsProcessed(static_cast<int64_t>(sentences));
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * Stream().bytes.size()));
  state.counters["sentences_per_s_cpu"] = total > 0 ? sentences / total : 0;
  return total > 0 ? sentences / total : 0;
}

void BM_Nmea_Parse(benchmark::State& state) {
  const TStream& stream = Stream();
  if (!stream.error.empty()) return state.SkipWithError(stream.error.c_str());
  velantis::TComandaNMEA sentence;
  size_t parsed = 0;
  Rates().parse = MeasureCpu(state, [&] {
    for (const std::string_view line : stream.lines) parsed += sentence.Parse(line, nullptr);
    benchmark::DoNotOptimize(parsed);
  });
}

void BM_Nmea_Live(benchmark::State& state) {
  const TStream& stream = Stream();
  if (!stream.error.empty()) return state.SkipWithError(stream.error.c_str());
  velantis::TNmeaLiveHandler handler;
  velantis::TPosicionNMEA record;
  size_t fixes = 0;
  Rates().live = MeasureCpu(state, [&] {
    for (const std::string_view line : stream.lines) fixes += handler.Handle(line, record);
    benchmark::DoNotOptimize(fixes);
  });
  state.counters["fixes"] = static_cast<double>(fixes) / static_cast<double>(state.iterations());
}

double ChildrenCpuSeconds() {
  rusage usage{};
  getrusage(RUSAGE_CHILDREN, &usage);
  return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
         static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) * 1e-6;
}

// gpsdecode on bytes: false with a reason when it cannot run. output gets
// the count of bytes it wrote.
bool RunGpsdecode(const std::string& bytes, size_t& output, std::string& error) {
  int toChild[2], fromChild[2];
  if (pipe(toChild) != 0 || pipe(fromChild) != 0) {
    error = "pipe failed";
    return false;
  }
  const pid_t pid = fork();
  if (pid < 0) {
    error = "fork failed";
    return false;
  }
  if (pid == 0) {
    dup2(toChild[0], STDIN_FILENO);
    dup2(fromChild[1], STDOUT_FILENO);
    for (const int fd : {toChild[0], toChild[1], fromChild[0], fromChild[1]}) close(fd);
    execl(kGpsdecode, kGpsdecode, static_cast<char*>(nullptr));
    _exit(127);
  }
  close(toChild[0]);
  close(fromChild[1]);
  std::thread writer([&] {
    size_t done = 0;
    while (done < bytes.size()) {
      const ssize_t n = write(toChild[1], bytes.data() + done, bytes.size() - done);
      if (n <= 0) break;
      done += static_cast<size_t>(n);
    }
    close(toChild[1]);
  });
  char buffer[1 << 16];
  output = 0;
  ssize_t n = 0;
  while ((n = read(fromChild[0], buffer, sizeof buffer)) > 0) output += static_cast<size_t>(n);
  close(fromChild[0]);
  writer.join();
  int status = 0;
  waitpid(pid, &status, 0);
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
    error = std::string(kGpsdecode) + " did not run (install gpsd-clients)";
    return false;
  }
  return true;
}

void BM_Nmea_Gpsdecode(benchmark::State& state) {
  const TStream& stream = Stream();
  if (!stream.error.empty()) return state.SkipWithError(stream.error.c_str());
  if (access(kGpsdecode, X_OK) != 0)
    return state.SkipWithError("/usr/bin/gpsdecode not found (install gpsd-clients)");
  signal(SIGPIPE, SIG_IGN);
  double cpu = 0, wall = 0;
  size_t output = 0;
  for (auto _ : state) {
    std::string error;
    const double cpuBefore = ChildrenCpuSeconds();
    const auto start = std::chrono::steady_clock::now();
    if (!RunGpsdecode(stream.bytes, output, error)) return state.SkipWithError(error.c_str());
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    state.SetIterationTime(seconds);
    wall += seconds;
    cpu += ChildrenCpuSeconds() - cpuBefore;
  }
  const auto sentences = static_cast<double>(state.iterations() * stream.lines.size());
  state.SetItemsProcessed(static_cast<int64_t>(sentences));
  state.counters["sentences_per_s_cpu"] = sentences / cpu;
  state.counters["json_MB"] = static_cast<double>(output) / 1e6;
  Rates().gpsdecodeCpu = sentences / cpu;
  Rates().gpsdecodeWall = sentences / wall;
}

BENCHMARK(BM_Nmea_Parse)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Nmea_Live)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Nmea_Gpsdecode)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(1);

}  // namespace

int main(int argc, char** argv) {
  if (!velantis::bench::RunBenchmarks(argc, argv)) return 1;
  const TRates& r = Rates();
  if (r.parse > 0) std::printf("velantis parse: %.0f sentences/s\n", r.parse);
  if (r.live > 0) std::printf("velantis live handling: %.0f sentences/s\n", r.live);
  if (r.gpsdecodeCpu > 0) {
    std::printf("gpsdecode: %.0f sentences/s of its CPU time (%.0f/s by the wall clock)\n",
                r.gpsdecodeCpu, r.gpsdecodeWall);
  }
  if (r.live > 0 && r.gpsdecodeCpu > 0)
    std::printf("velantis live handling: %.1fx the speed of gpsdecode\n", r.live / r.gpsdecodeCpu);
  return 0;
}
