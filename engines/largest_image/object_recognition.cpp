#include "engines/largest_image/object_recognition.h"

#include <algorithm>
#include <random>

#include "engines/base/images.h"

namespace symfold::detail {
namespace {

constexpr std::size_t kStabiliserElements = 24;
constexpr std::size_t kWalkSteps = 16;
constexpr std::uint32_t kNone = ObjectPositions::kNone;

using Positions = std::vector<std::uint32_t>;

class ObjectRecognition {
 public:
  explicit ObjectRecognition(const Subgroup& group);

  std::optional<ObjectPositions> run(std::size_t max_entries);

 private:
  std::vector<Images> stabiliser_elements();
  Positions objects_apart(const std::vector<Images>& stabiliser, bool& is_unordered) const;
  bool add_orbit(const Positions& orbit);
  void add_kind(const Positions& objects, bool is_unordered);
  ObjectPositions numbered() const;
  bool is_proved(const ObjectPositions& objects) const;

  const Subgroup& group_;
  std::vector<const Images*> sample_;
  std::vector<Images> inverses_;  // of the sample
  OrbitTree tree_;                // of the latest orbit's first point, by the sample
  std::mt19937 random_{1};
  std::vector<Positions> classes_;  // of objects, named by the positions that are the objects
  std::vector<ObjectPair> pairs_;   // by position, of objects named so
  std::vector<bool> is_unordered_;  // by kind
};

ObjectRecognition::ObjectRecognition(const Subgroup& group)
    : group_(group),
      sample_(sample_of(group.generators())),
      tree_(static_cast<int>(group.size())),
      pairs_(group.size()) {
  for (const Images* generator : sample_) inverses_.push_back(inverse(*generator));
}

std::optional<ObjectPositions> ObjectRecognition::run(std::size_t max_entries) {
  for (const Positions& orbit : group_.orbits()) {
    if (!add_orbit(orbit)) return std::nullopt;
  }
  std::size_t objects_of_all = 0;
  for (const Positions& objects : classes_) objects_of_all += objects.size();
  if (is_unordered_.size() * objects_of_all * objects_of_all > max_entries) return std::nullopt;
  ObjectPositions objects = numbered();
  if (!is_proved(objects)) return std::nullopt;
  return objects;
}

// Returns random elements, brought back along the tree so that they fix its root.
std::vector<Images> ObjectRecognition::stabiliser_elements() {
  std::vector<Images> elements;
  const auto root = static_cast<std::size_t>(tree_.points()[0]);
  Images walk = identity_images<Images>(group_.size());
  for (std::size_t i = 0; i < kStabiliserElements; ++i) {
    for (std::size_t step = 0; step < kWalkSteps; ++step) {
      walk = composed(*sample_[random_() % sample_.size()], walk);
    }
    Images element = walk;
    tree_.walk_to_root(static_cast<int>(element[root]), [&](int generator) {
      element = composed(inverses_[static_cast<std::size_t>(generator)], element);
    });
    elements.push_back(std::move(element));
  }
  return elements;
}

// Returns the objects outside the largest orbit of each class under the stabiliser. A class without an orbit
// of more than half its objects adds none.
Positions ObjectRecognition::objects_apart(const std::vector<Images>& stabiliser, bool& is_unordered) const {
  Positions apart;
  UnionFind orbits(static_cast<int>(group_.size()));
  for (const Images& element : stabiliser) unite_with_images(element, orbits);
  const auto orbit_of = [&](std::uint32_t object) {
    return static_cast<std::size_t>(orbits.find(static_cast<int>(object)));
  };
  for (const Positions& objects : classes_) {
    std::vector<std::size_t> size(group_.size());
    for (const std::uint32_t object : objects) ++size[orbit_of(object)];
    const auto largest = static_cast<std::size_t>(std::max_element(size.begin(), size.end()) - size.begin());
    if (2 * size[largest] <= objects.size()) continue;
    for (const std::uint32_t object : objects) {
      if (orbit_of(object) != largest) apart.push_back(object);
    }
  }
  is_unordered = apart.size() == 2 && orbit_of(apart[0]) == orbit_of(apart[1]);
  return apart;
}

// Takes the orbit's positions for those of objects known already, or for objects of their own. Returns false
// if neither fits.
bool ObjectRecognition::add_orbit(const Positions& orbit) {
  build_tree(orbit[0], sample_, tree_);
  bool is_unordered = false;
  const Positions objects = objects_apart(stabiliser_elements(), is_unordered);
  if (objects.size() > 2) return false;
  if (objects.empty()) {
    classes_.push_back(orbit);
    add_kind({orbit[0]}, false);
  } else {
    add_kind(objects, is_unordered);
  }
  return true;
}

// The tree's root belongs to these objects, and each other point to what the tree makes of them.
void ObjectRecognition::add_kind(const Positions& objects, bool is_unordered) {
  const auto kind = static_cast<std::uint32_t>(is_unordered_.size());
  is_unordered_.push_back(is_unordered);
  for (const int point : tree_.points()) {
    ObjectPair& pair = pairs_[static_cast<std::size_t>(point)];
    if (tree_.depth(point) == 0) {
      pair = {kind, objects.front(), objects.back()};
      continue;
    }
    const ObjectPair& parent = pairs_[static_cast<std::size_t>(tree_.parent(point))];
    const Images& generator = *sample_[static_cast<std::size_t>(tree_.generator(point))];
    pair = {kind, generator[parent.first], generator[parent.second]};
  }
}

// Objects get their numbers class after class, within a class in the order in which the positions name them.
// Unordered pairs name the smaller one first.
ObjectPositions ObjectRecognition::numbered() const {
  Positions class_of(group_.size(), kNone);
  Positions class_begins{0};
  for (std::uint32_t c = 0; c < classes_.size(); ++c) {
    for (const std::uint32_t object : classes_[c]) class_of[object] = c;
    class_begins.push_back(class_begins.back() + static_cast<std::uint32_t>(classes_[c].size()));
  }
  Positions next = class_begins;
  Positions number(group_.size(), kNone);
  for (const ObjectPair& pair : pairs_) {
    for (const std::uint32_t object : {pair.first, pair.second}) {
      if (number[object] == kNone) number[object] = next[class_of[object]]++;
    }
  }
  std::vector<ObjectPair> pairs;
  for (const ObjectPair& pair : pairs_) {
    pairs.push_back({pair.kind, number[pair.first], number[pair.second]});
    if (is_unordered_[pair.kind] && pairs.back().first > pairs.back().second) {
      std::swap(pairs.back().first, pairs.back().second);
    }
  }
  return {std::move(class_begins), std::move(pairs), is_unordered_};
}

bool ObjectRecognition::is_proved(const ObjectPositions& objects) const {
  Positions own_position(objects.object_count(), kNone);
  for (std::uint32_t p = 0; p < objects.pairs().size(); ++p) {
    const ObjectPair& pair = objects.pairs()[p];
    if (pair.is_single() && own_position[pair.first] == kNone) own_position[pair.first] = p;
  }
  Positions images(objects.object_count());
  for (const Images& generator : group_.generators()) {
    for (std::size_t object = 0; object < images.size(); ++object) {
      images[object] = objects.pairs()[generator[own_position[object]]].first;
    }
    if (objects.images_of(images) != generator) return false;
  }
  images = identity_images<Positions>(images.size());
  for (std::size_t c = 0; c + 1 < objects.class_begins().size(); ++c) {
    for (std::uint32_t object = objects.class_begins()[c] + 1; object < objects.class_begins()[c + 1];
         ++object) {
      std::swap(images[object - 1], images[object]);
      const Images swap = objects.images_of(images);
      if (swap.empty() || !group_.contains(swap)) return false;
      std::swap(images[object - 1], images[object]);
    }
  }
  return true;
}

}  // namespace

std::optional<ObjectPositions> recognise_objects(const Subgroup& group, std::size_t max_entries) {
  return ObjectRecognition(group).run(max_entries);
}

}  // namespace symfold::detail
