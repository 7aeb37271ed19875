#include "comm/thread_comm.h"

#include <exception>

#include "app/log.h"
#include "comm/serial_error.h"

namespace velantis {

TThreadComm::~TThreadComm() {
  Cancel();
  Wait();
}

bool TThreadComm::Start(std::string name, TCommand command) {
  if (Running()) return false;
  if (m_thread.joinable()) m_thread.join();
  m_name = std::move(name);
  m_progress.Reset();
  m_succeeded = false;
  {
    const std::lock_guard lock(m_errorMutex);
    m_error.clear();
  }
  m_running.store(true, std::memory_order_release);
  m_thread = std::thread(&TThreadComm::Run, this, std::move(command));
  return true;
}

bool TThreadComm::Wait() {
  if (m_thread.joinable()) m_thread.join();
  return m_succeeded;
}

std::string TThreadComm::ErrorText() const {
  const std::lock_guard lock(m_errorMutex);
  return m_error;
}

void TThreadComm::Run(TCommand command) {
  try {
    m_succeeded = command(m_progress);
  } catch (const TXErrorRScom& error) {
    Fail(std::string(kThreadSerialError) + " " + error.what(), true);
  } catch (const std::exception& error) {
    Fail(std::string(kThreadException) + " " + error.what(), false);
  } catch (...) {
    Fail(std::string(kThreadUnknownError), false);
  }
  m_running.store(false, std::memory_order_release);
}

void TThreadComm::Fail(std::string text, bool commError) {
  TLog::Instance().Write(commError ? TLogKind::CommError : TLogKind::Error, text);
  const std::lock_guard lock(m_errorMutex);
  m_error = std::move(text);
}

}  // namespace velantis
