#include "engines/largest_image/object_recognition.h"

#include <algorithm>
#include <numeric>
#include <random>

namespace symfold::detail {
namespace {

constexpr std::size_t kStabiliserElements = 24;
constexpr std::size_t kStepsOfWalk = 16;
constexpr std::uint32_t kNone = ObjectPositions::kNone;

using Positions = std::vector<std::uint32_t>;

class ObjectRecognition {
 public:
  explicit ObjectRecognition(const Subgroup& group);

  std::optional<ObjectPositions> run(std::size_t max_entries);

 private:
  // The walk from an orbit's first point: how each other point is reached.
  struct Tree {
    Positions points;
    Positions parent;                 // by point
    std::vector<std::size_t> letter;  // by point: the generator that carries the parent here
  };

  Tree make_tree(std::uint32_t root) const;
  std::vector<Images> stabiliser_elements(const Tree& tree);
  Positions objects_apart(const std::vector<Images>& stabiliser, bool& is_unordered) const;
  bool add_orbit(const Positions& orbit);
  void add_kind(const Tree& tree, const Positions& objects, bool is_unordered);
  ObjectPositions numbered() const;
  bool is_proved(const ObjectPositions& objects) const;

  const Subgroup& group_;
  std::vector<const Images*> letters_;
  std::vector<Images> inverses_;
  std::mt19937 random_{1};
  std::vector<Positions> classes_;  // of objects, named by the positions that are the objects
  std::vector<ObjectPair> pairs_;   // by position, of objects named so
  std::vector<bool> is_unordered_;  // by kind
};

ObjectRecognition::ObjectRecognition(const Subgroup& group)
    : group_(group), letters_(sample_of(group.generators())), pairs_(group.size()) {
  for (const Images* letter : letters_) inverses_.push_back(inverse(*letter));
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

ObjectRecognition::Tree ObjectRecognition::make_tree(std::uint32_t root) const {
  Tree tree{{root}, Positions(group_.size(), kNone), std::vector<std::size_t>(group_.size())};
  tree.parent[root] = root;
  for (std::size_t i = 0; i < tree.points.size(); ++i) {
    for (std::size_t letter = 0; letter < letters_.size(); ++letter) {
      const std::uint32_t image = (*letters_[letter])[tree.points[i]];
      if (tree.parent[image] != kNone) continue;
      tree.parent[image] = tree.points[i];
      tree.letter[image] = letter;
      tree.points.push_back(image);
    }
  }
  return tree;
}

// Random elements, brought back along the tree so that they fix its root.
std::vector<Images> ObjectRecognition::stabiliser_elements(const Tree& tree) {
  std::vector<Images> elements;
  const std::uint32_t root = tree.points[0];
  Images walk(group_.size());
  std::iota(walk.begin(), walk.end(), 0U);
  for (std::size_t i = 0; i < kStabiliserElements; ++i) {
    for (std::size_t step = 0; step < kStepsOfWalk; ++step) {
      walk = composed(*letters_[random_() % letters_.size()], walk);
    }
    Images element = walk;
    for (std::uint32_t point = element[root]; point != root; point = tree.parent[point]) {
      element = composed(inverses_[tree.letter[point]], element);
    }
    elements.push_back(std::move(element));
  }
  return elements;
}

// The objects outside the largest orbit of each class under the stabiliser.
Positions ObjectRecognition::objects_apart(const std::vector<Images>& stabiliser, bool& is_unordered) const {
  Positions apart;
  Classes orbits(group_.size());
  for (const Images& element : stabiliser) {
    for (std::uint32_t x = 0; x < group_.size(); ++x) orbits.unite(x, element[x]);
  }
  for (const Positions& objects : classes_) {
    std::vector<std::size_t> size(group_.size());
    for (const std::uint32_t object : objects) ++size[orbits.find(object)];
    const std::uint32_t largest =
        static_cast<std::uint32_t>(std::max_element(size.begin(), size.end()) - size.begin());
    if (2 * size[largest] <= objects.size()) continue;
    for (const std::uint32_t object : objects) {
      if (orbits.find(object) != largest) apart.push_back(object);
    }
  }
  is_unordered = apart.size() == 2 && orbits.find(apart[0]) == orbits.find(apart[1]);
  return apart;
}

// As positions of objects known already, or as objects of their own.
bool ObjectRecognition::add_orbit(const Positions& orbit) {
  const Tree tree = make_tree(orbit[0]);
  bool is_unordered = false;
  const Positions objects = objects_apart(stabiliser_elements(tree), is_unordered);
  if (objects.size() > 2) return false;
  if (objects.empty()) {
    classes_.push_back(orbit);
    add_kind(tree, {orbit[0]}, false);
  } else {
    add_kind(tree, objects, is_unordered);
  }
  return true;
}

// The root belongs to the objects; the others to what the tree makes of them.
void ObjectRecognition::add_kind(const Tree& tree, const Positions& objects, bool is_unordered) {
  const auto kind = static_cast<std::uint32_t>(is_unordered_.size());
  is_unordered_.push_back(is_unordered);
  pairs_[tree.points[0]] = {kind, objects.front(), objects.back()};
  for (std::size_t i = 1; i < tree.points.size(); ++i) {
    const std::uint32_t point = tree.points[i];
    const ObjectPair& parent = pairs_[tree.parent[point]];
    const Images& letter = *letters_[tree.letter[point]];
    pairs_[point] = {kind, letter[parent.first], letter[parent.second]};
  }
}

// Objects get their numbers in the order in which the positions name them, class after class. Unordered pairs
// name the smaller one first.
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
  std::iota(images.begin(), images.end(), 0U);
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
