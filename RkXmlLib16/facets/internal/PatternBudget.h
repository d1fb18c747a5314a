#ifndef RKXMLLIB16_FACETS_INTERNAL_PATTERNBUDGET_H
#define RKXMLLIB16_FACETS_INTERNAL_PATTERNBUDGET_H

namespace RkXmlLib16 {

// The steps that all patterns together may take on this thread while it lives, beyond a cheap attempt for each value.
// One inside another has no effect.
class PatternBudget {
 public:
  using Exceeded = void (*)(unsigned long limit);

  // 0 means no limit. `exceeded` throws.
  PatternBudget(unsigned long limit, Exceeded exceeded) noexcept
      : m_limit(limit), m_left(limit), m_exceeded(exceeded), m_isOutermost(limit != 0 && s_current == nullptr) {
    if (m_isOutermost) s_current = this;
  }
  PatternBudget(const PatternBudget&) = delete;
  PatternBudget& operator=(const PatternBudget&) = delete;
  ~PatternBudget() {
    if (m_isOutermost) s_current = nullptr;
  }

  // Null when no limit holds.
  static PatternBudget* GetCurrent() noexcept { return s_current; }

  unsigned long GetLeft() const noexcept { return m_left; }
  void Spend(unsigned long steps) {
    m_left -= steps < m_left ? steps : m_left;
    if (m_left == 0) m_exceeded(m_limit);
  }

 private:
  static inline thread_local PatternBudget* s_current = nullptr;

  const unsigned long m_limit;
  unsigned long m_left;
  const Exceeded m_exceeded;
  const bool m_isOutermost;
};

}  // namespace RkXmlLib16

#endif
