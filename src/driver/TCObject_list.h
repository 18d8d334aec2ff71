#ifndef TC_OBJECT_LIST_H
#define TC_OBJECT_LIST_H

class TCObject;

// The runtime list of a scene's objects. For now it holds only what cameras
// need to resolve matte requests; cameras, the sun, the bands and the
// rendering dispatch join it as they are built.
class TCObject_list {
 public:
  // Most objects a list holds.
  static constexpr int max_objects = 100;

  // An empty list: no objects, every slot null.
  TCObject_list();
  // Does not delete the objects: ownership comes with building the list from
  // its input, which is not part of this class yet.
  ~TCObject_list();

  // index starts at -1. A name that sorts after "scene" gives n_objects and 1
  // at once, with no search (the comparison tests for a result of 1 rather
  // than 0, and that is kept): callers test for "scene" themselves. Any other
  // name is matched exactly against the object names, the last match winning;
  // 0 when nothing matches.
  int find_by_name(const char* name, int& index) const;

  int n_objects;
  TCObject* objects[max_objects];

 private:
  TCObject_list(const TCObject_list&);
  TCObject_list& operator=(const TCObject_list&);
};

#endif
