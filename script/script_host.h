// The application side a script talks to: the elements loaded, the
// configuration store, the log and progress display (Monitor), the terminal
// prompts and the moving-map state. The running instance implements it for
// the application; TLocalScriptHost is the in-process one that
// `velantis script`, the tests and the fuzz target use.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "app/config.h"
#include "core/progress.h"
#include "formats/file_dispatch.h"
#include "geodesy/lista_datums.h"
#include "geodesy/projection.h"

namespace velantis {

// One element the application holds: the file it came from ("" when it was
// created and never saved) and its contents.
struct TLoadedFile {
  std::string path;
  TElementFile element;
};

// The log and progress display scripts write to.
class TScriptMonitor {
public:
  virtual ~TScriptMonitor() = default;
  virtual void Log(std::string_view line) = 0;
  virtual TProgress& Progress() = 0;
};

// The prompts of MessageBox, Warning and InputUser. Input returns false when
// the user cancels.
class TScriptTerminal {
public:
  virtual ~TScriptTerminal() = default;
  virtual void Message(std::string_view text) = 0;
  virtual void Warning(std::string_view text) = 0;
  virtual bool Input(std::string_view prompt, std::string& answer) = 0;
};

struct TMovingMapState {
  bool on = false;
  double lat = 0, lon = 0;  // degrees, the last position (WGS 84)
};

// The projection scripts work in (SetProjection); none until one is set.
struct TWorkingProjection {
  std::shared_ptr<const TProjection> projection;
  int datum = 0;  // in the datum list
};

class TScriptHost {
public:
  virtual ~TScriptHost() = default;
  // Open files and created lists, oldest first.
  virtual std::vector<std::shared_ptr<TLoadedFile>>& Loaded() = 0;
  virtual TConfig& Config() = 0;
  virtual TListaDatums& Datums() = 0;
  // Writes the configuration back to its file (one atomic write).
  virtual bool SaveConfig(std::string& error) = 0;
  virtual TScriptMonitor& Monitor() = 0;
  // nullptr when nobody can answer a prompt.
  virtual TScriptTerminal* Terminal() = 0;
  virtual TMovingMapState MovingMap() const = 0;
  virtual TWorkingProjection& Projection() = 0;
};

// Monitor lines go to the application log (and are kept for Lines()); the
// configuration is written back only when it was loaded from a file. The
// configuration and the datums are the host's own (defaults, WGS 84 only)
// unless the program's are given.
class TLocalScriptHost : public TScriptHost, public TScriptMonitor {
public:
  TLocalScriptHost();
  TLocalScriptHost(TConfig& config, TListaDatums& datums) : m_configIn(&config), m_datumsIn(&datums) {}

  std::vector<std::shared_ptr<TLoadedFile>>& Loaded() override { return m_loaded; }
  TConfig& Config() override { return *m_configIn; }
  TListaDatums& Datums() override { return *m_datumsIn; }
  bool SaveConfig(std::string& error) override;
  TScriptMonitor& Monitor() override { return *this; }
  TScriptTerminal* Terminal() override { return m_terminal; }
  TMovingMapState MovingMap() const override { return m_movingMap; }
  TWorkingProjection& Projection() override { return m_projection; }

  void Log(std::string_view line) override;
  TProgress& Progress() override { return m_progress; }
  const std::vector<std::string>& Lines() const { return m_lines; }

  void SetTerminal(TScriptTerminal* terminal) { m_terminal = terminal; }
  void SetMovingMap(TMovingMapState state) { m_movingMap = state; }

private:
  std::vector<std::shared_ptr<TLoadedFile>> m_loaded;
  TConfig m_config;
  TListaDatums m_datums{m_config.Num_Datum};
  TConfig* m_configIn = &m_config;
  TListaDatums* m_datumsIn = &m_datums;
  TProgress m_progress;
  std::vector<std::string> m_lines;
  TScriptTerminal* m_terminal = nullptr;
  TMovingMapState m_movingMap;
  TWorkingProjection m_projection;
};

}  // namespace velantis
