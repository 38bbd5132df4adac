#include "engines/largest_image/object_recognition.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <utility>

#include "engines/base/images.h"
#include "engines/base/union_find.h"
#include "engines/largest_image/stabiliser_trees.h"

namespace symfold::detail {
namespace {

using Points = std::vector<std::uint32_t>;
using Seat = ObjectPositions::Seat;

// Objects are named by the positions that they are until all of them are known.
class ObjectRecognition {
 public:
  explicit ObjectRecognition(const PermutationGroup& group)
      : group_(group), trees_(group), tree_(group.degree()), seats_(trees_.degree()) {
    for (const SparsePermutation& moves : trees_.generators()) {
      Images& images = dense_.emplace_back(identity_images<Images>(trees_.degree()));
      for (const auto& [point, image] : moves)
        images[static_cast<std::size_t>(point)] = static_cast<std::uint32_t>(image);
    }
  }

  std::optional<ObjectPositions> run(std::size_t max_seats);

 private:
  std::vector<Points> orbits() const;
  std::vector<Points> roles_of(std::uint32_t position) const;
  void add_orbit(const Points& orbit);
  ObjectPositions numbered() const;
  bool is_proved(const ObjectPositions& objects) const;
  bool has_exchange(const ObjectPositions& objects, std::uint32_t object) const;

  const PermutationGroup& group_;
  StabiliserTrees trees_;
  OrbitTree tree_;
  std::vector<Images> dense_;    // the generators
  std::vector<Points> classes_;  // of objects
  Points class_of_role_;
  std::vector<std::vector<Seat>> seats_;  // by position
};

// Returns the orbits, the shortest first.
std::vector<Points> ObjectRecognition::orbits() const {
  UnionFind moved_together(group_.degree());
  for (const SparsePermutation& moves : trees_.generators()) {
    for (const auto& [point, image] : moves) moved_together.unite(point, image);
  }
  std::vector<Points> orbits = moved_together.lists<std::uint32_t>();
  std::ranges::stable_sort(orbits, {}, &Points::size);
  return orbits;
}

std::optional<ObjectPositions> ObjectRecognition::run(std::size_t max_seats) {
  std::size_t seat_count = 0;
  for (const Points& orbit : orbits()) {
    if (orbit.size() == 1) return std::nullopt;
    add_orbit(orbit);
    seat_count += orbit.size() * seats_[orbit[0]].size();
    if (seat_count > max_seats) return std::nullopt;
  }
  ObjectPositions objects = numbered();
  if (!objects.are_distinct() || !is_proved(objects)) return std::nullopt;
  return objects;
}

// Returns the objects of each role that the position has. A role never has objects of two classes.
std::vector<Points> ObjectRecognition::roles_of(std::uint32_t position) const {
  const Points orbit_of = guess_stabiliser_orbits(trees_, position);
  std::vector<Points> roles;
  for (const Points& objects : classes_) {
    std::map<std::uint32_t, Points> parts;
    for (const std::uint32_t object : objects) parts[orbit_of[object]].push_back(object);
    const auto longest = std::ranges::max_element(
        parts, {}, [](const auto& part) { return std::pair(part.second.size(), part.first); });
    for (auto part = parts.begin(); part != parts.end(); ++part) {
      if (part != longest) roles.push_back(std::move(part->second));
    }
  }
  return roles;
}

// The tree's root has the roles that its stabiliser shows, and each other point what the tree makes of them.
// If it has none, the orbit is a class of objects.
void ObjectRecognition::add_orbit(const Points& orbit) {
  std::vector<Points> roles = roles_of(orbit[0]);
  if (roles.empty()) {
    classes_.push_back(orbit);
    roles.push_back({orbit[0]});
  }
  std::vector<Seat>& own = seats_[orbit[0]];
  for (const Points& objects : roles) {
    const auto role = static_cast<std::uint32_t>(class_of_role_.size());
    for (const std::uint32_t object : objects) own.push_back({role, object});
    const auto is_class = [&](const Points& known) { return std::ranges::binary_search(known, objects[0]); };
    class_of_role_.push_back(
        static_cast<std::uint32_t>(std::ranges::find_if(classes_, is_class) - classes_.begin()));
  }
  trees_.grow_tree(orbit[0], tree_);
  for (const int point : tree_.points()) {
    if (tree_.depth(point) == 0) continue;
    const Images& generator = dense_[static_cast<std::size_t>(tree_.generator(point))];
    std::vector<Seat>& seats = seats_[static_cast<std::size_t>(point)];
    seats = seats_[static_cast<std::size_t>(tree_.parent(point))];
    for (Seat& seat : seats) seat.object = generator[seat.object];
  }
}

// Objects get their numbers class after class, ascending.
ObjectPositions ObjectRecognition::numbered() const {
  Points class_begins{0};
  Points number(trees_.degree());
  for (const Points& objects : classes_) {
    for (std::uint32_t i = 0; i < objects.size(); ++i) number[objects[i]] = class_begins.back() + i;
    class_begins.push_back(class_begins.back() + static_cast<std::uint32_t>(objects.size()));
  }
  std::vector<std::vector<Seat>> seats = seats_;
  for (std::vector<Seat>& own : seats) {
    for (Seat& seat : own) seat.object = number[seat.object];
  }
  return {std::move(class_begins), class_of_role_, seats};
}

bool ObjectRecognition::is_proved(const ObjectPositions& objects) const {
  Points number(trees_.degree());
  Points names;
  for (const Points& members : classes_) {
    for (const std::uint32_t object : members) {
      number[object] = static_cast<std::uint32_t>(names.size());
      names.push_back(object);
    }
  }
  Points images(names.size());
  for (const Images& generator : dense_) {
    for (std::size_t object = 0; object < names.size(); ++object)
      images[object] = number[generator[names[object]]];
    if (objects.images_of(images) != generator) return false;
  }
  for (std::size_t c = 0; c + 1 < objects.class_begins().size(); ++c) {
    for (std::uint32_t object = objects.class_begins()[c] + 1; object < objects.class_begins()[c + 1];
         ++object) {
      if (!has_exchange(objects, object)) return false;
    }
  }
  return true;
}

// True if the exchange of the object and the one before is in the group.
bool ObjectRecognition::has_exchange(const ObjectPositions& objects, std::uint32_t object) const {
  Points exchanged(objects.object_count());
  std::iota(exchanged.begin(), exchanged.end(), 0U);
  std::swap(exchanged[object - 1], exchanged[object]);
  const Points images = objects.images_of(exchanged);
  if (images.empty()) return false;
  SparsePermutation moves;
  for (std::size_t p = 0; p < images.size(); ++p) {
    if (images[p] != p) moves.push_back({static_cast<int>(p), static_cast<int>(images[p])});
  }
  return group_.contains(moves);
}

}  // namespace

std::optional<ObjectPositions> recognise_objects(const PermutationGroup& group, std::size_t max_entries) {
  const std::size_t tree_entries =
      std::accumulate(group.orbit_lengths().begin(), group.orbit_lengths().end(), std::size_t{0});
  const auto degree = static_cast<std::size_t>(group.degree());
  if (tree_entries > max_entries || group.generators().size() * degree > max_entries) return std::nullopt;
  return ObjectRecognition(group).run(max_entries);
}

}  // namespace symfold::detail
