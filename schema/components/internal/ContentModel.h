#ifndef RKXMLLIB16_SCHEMA_COMPONENTS_INTERNAL_CONTENTMODEL_H
#define RKXMLLIB16_SCHEMA_COMPONENTS_INTERNAL_CONTENTMODEL_H

#include <cstdint>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "schema/components/internal/State.h"

namespace RkXmlSchema {

// What XML Schema asks of content models: Unique Particle Attribution, Element Declarations Consistent, Particle Valid
// (Restriction), All Group Limited. Groups inside each other are limited in depth before, so recursion over them is
// safe; what could grow with each level is remembered for each group or paid from a budget.
class CContentModels {
 public:
  explicit CContentModels(CSchemaSet::State& state) : m_state(state) {}

  bool IsEmptiable(const Particle* particle) { return particle == nullptr || RangeOf(*particle).least == 0; }
  void CheckType(const ComplexTypeDefinition& type);
  void CheckAll();
  // Whether the one particle accepts nothing but what the other accepts, as the rules tell it.
  bool IsRestriction(const Particle& restricted, const Particle& base);

 private:
  // How many elements: the effective total range.
  struct Range {
    std::uint64_t least;
    std::uint64_t most;
  };

  // A content model with all groups written out.
  struct Tree {
    const Particle* particle = nullptr;
    std::vector<Tree> children;
    std::vector<std::uint32_t> first;  // leaves that it can begin with
    std::uint32_t leaf = 0;            // of an element or wildcard
    bool isNullable = false;

    bool IsLeaf() const { return particle->group == nullptr; }
  };
  using Leaves = std::vector<std::uint32_t>;

  // The same without pointless groups.
  struct Normal {
    const Particle* particle = nullptr;
    std::uint64_t least = 1;
    std::uint64_t most = 1;
    std::vector<Normal> children;
  };

  Range RangeOf(const Particle& particle);
  Range RangeOf(const ModelGroup& group);
  Range RangeOf(const Normal& normal);
  std::uint64_t SizeOf(const Particle& particle);
  bool Pay(std::size_t steps);

  void Expand(Tree& tree, const Particle& particle);
  void FindFirst(Tree& tree);
  void CheckFollow(const Tree& tree, const Leaves& next);
  void CheckBody(const Tree& tree, const Leaves& next);
  Leaves Checked(const Leaves& a, const Leaves& b);
  void Complain(std::uint32_t one, std::uint32_t other);
  void CheckConsistency();
  void CheckAllGroups(const Particle& root);

  void Normalize(Normal& normal, const Particle& particle, const Particle* parent);
  bool Restricts(const Normal& r, const Normal& b);
  bool RestrictsGroup(const Normal& r, const Normal& b);
  bool MapsInOrder(const Normal& r, const Normal& b, bool skipsAny);
  bool MapsInAnyOrder(const Normal& r, const Normal& b);
  bool RestrictsElement(const Normal& r, const Normal& b);
  bool RestrictsWildcard(const Normal& r, const Normal& b);
  void CheckRestriction(const ComplexTypeDefinition& type);

  CSchemaSet::State& m_state;
  std::unordered_map<const ModelGroup*, Range> m_ranges;
  std::unordered_map<const ModelGroup*, std::uint64_t> m_sizes;
  std::uint64_t m_totalSize = 0;
  std::size_t m_budget = 4000000;

  // Of the content model at hand.
  struct Name {
    const ElementDeclaration* declaration;
    std::uint32_t leaf;  // that has it in the set at hand
    std::uint64_t set = 0;
  };
  const ComplexTypeDefinition* m_type = nullptr;
  std::vector<const Particle*> m_leaves;
  std::vector<std::vector<std::uint32_t>> m_leafNames;  // numbers of the names of each leaf
  std::unordered_map<QName, std::uint32_t, QNameHash> m_nameIndex;
  std::vector<Name> m_names;
  std::vector<std::uint64_t> m_leafSet;
  std::uint64_t m_set = 0;
  bool m_hasConflict = false;
  std::set<std::pair<const Particle*, const Particle*>> m_reported;
};

}  // namespace RkXmlSchema

#endif
