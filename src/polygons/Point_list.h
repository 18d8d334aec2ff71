#ifndef TC_POINT_LIST_H
#define TC_POINT_LIST_H

// One slot of the table: a (vertex, texture, normal) triple of OBJ ids,
// texture and normal 0 when the corner names none, and the index of the
// next duplicate of the same vertex (0 at a chain's end).
struct Point_slot {
  int used;
  int v, t, n;
  int next;
};

// Resolves the corners of OBJ faces into points. The first triple met for
// a vertex v takes the primary slot v; a later triple with the same v but
// another texture or normal becomes a duplicate, chained from that slot.
// add gives v for a primary point, -index (from 1) for a duplicate, and 0
// after a message when the triple cannot be placed.
class Point_list {
 public:
  explicit Point_list(int capacity = 50000);
  ~Point_list();

  // 1 when the tables were allocated.
  int ok() const { return primary != nullptr && duplicates != nullptr; }
  int add(int v, int t, int n);
  // The slot an id from add names (primary or duplicate); null for 0 or
  // ids out of range.
  const Point_slot* slot_of(int id) const;

  int capacity;
  int n_primary;
  int n_duplicates;
  Point_slot* primary;     // [capacity + 1]: index is the vertex id
  Point_slot* duplicates;  // [capacity + 1]: from 1, in order of arrival

 private:
  Point_list(const Point_list&);
  Point_list& operator=(const Point_list&);
};

#endif
