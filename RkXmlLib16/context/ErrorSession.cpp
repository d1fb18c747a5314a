#include <exception>
#include <new>
#include <utility>

#include "RkXmlLib16/context/internal/ErrorSession.h"

namespace RkXmlLib16 {

namespace {

thread_local CErrorSession* t_session = nullptr;

}  // namespace

CErrorSession::CErrorSession(const CSerializationContext& context) {
  IErrorHandler* const handler = context.GetErrorHandler();
  if (handler == nullptr || (t_session != nullptr && t_session->m_handler == handler)) return;
  m_handler = handler;
  m_outer = t_session;
  t_session = this;
}

CErrorSession::~CErrorSession() {
  if (m_handler != nullptr) t_session = m_outer;
}

bool CErrorSession::IsActive() noexcept { return t_session != nullptr; }

bool CErrorSession::TellHandler(const CRkException& error) {
  CErrorSession* const session = t_session;
  if (session == nullptr || session->m_isStopped || error.EndsReading()) return false;
  if (session->m_attempts.empty()) return session->Deliver(error);
  session->m_attempts.back().push_back({std::unique_ptr<const CRkException>(error.Clone()), {}});
  return true;
}

void CErrorSession::TellDropped(const CSerializationContext& context, CRkDropped dropped) {
  CErrorSession* const session = t_session;
  if (session == nullptr || session->m_attempts.empty()) return context.GetErrorHandler()->OnDropped(dropped);
  session->m_attempts.back().push_back({nullptr, std::move(dropped)});
}

void CErrorSession::AddRead(const void* element) {
  if (t_session != nullptr) t_session->m_read.insert(element);
}

bool CErrorSession::TakeRead(const void* element) {
  return t_session == nullptr || t_session->m_read.erase(element) != 0;
}

bool CErrorSession::Deliver(const CRkException& error) {
  m_hasTold = true;
  m_isStopped = !m_handler->OnError(error);
  return !m_isStopped;
}

bool CErrorSession::Deliver(const Told& told) {
  if (told.error != nullptr) return Deliver(*told.error);
  m_handler->OnDropped(told.dropped);
  return true;
}

void CErrorSession::DeliverPending() {
  for (const Told& told : std::exchange(m_pending, {})) Deliver(told);
}

// What plain reading refuses must not pass unnoticed because of an attempt that was taken back.
void CErrorSession::Finish() {
  if (m_hasTold || m_takenBack == nullptr) return;
  if (!Deliver(*m_takenBack)) throw CRkException(*m_takenBack);
}

void CErrorSession::TellLast(const CRkException& error) {
  DeliverPending();
  if (!m_isStopped) Deliver(error);
  m_isStopped = true;
}

CErrorSession* CErrorSession::Attempt::Open() {
  if (t_session != nullptr) t_session->m_attempts.emplace_back();
  return t_session;
}

void CErrorSession::Attempt::Close() noexcept {
  std::vector<Told> told = std::move(m_session->m_attempts.back());
  m_session->m_attempts.pop_back();
  if (told.empty()) return;
  if (std::uncaught_exceptions() > m_exceptions) {
    std::vector<Told>& target = m_session->m_attempts.empty() ? m_session->m_pending : m_session->m_attempts.back();
    try {
      for (Told& one : told) target.push_back(std::move(one));
    } catch (const std::bad_alloc&) {  // the exception on its way is more important
    }
    return;
  }
  for (Told& one : told)
    if (one.error != nullptr && m_session->m_takenBack == nullptr) m_session->m_takenBack = std::move(one.error);
}

void CErrorSession::Attempt::KeepAll() {
  CErrorSession& session = *m_session;
  std::vector<Told> told = std::exchange(session.m_attempts.back(), {});
  if (session.m_attempts.size() > 1) {
    std::vector<Told>& outer = session.m_attempts[session.m_attempts.size() - 2];
    for (Told& one : told) outer.push_back(std::move(one));
    return;
  }
  for (const Told& one : told)
    if (!session.Deliver(one)) throw CRkException(*one.error);
}

}  // namespace RkXmlLib16
