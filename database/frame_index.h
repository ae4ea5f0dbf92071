/** Which rows stand for a frame: an index from frame pointer to rows, so that reading or writing the selection of many
 *  objects does not compare each of them with each row.
 *
 *  It holds positions and copies only. While the host answers a request it may have the check marks of the rows read
 *  anew or the rows freed: the index goes on giving what was there when it was made.
 */
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <utility>
#include <vector>

class Quorel_2D_Frame;

/** The frames of an object: its own and further ones. Null entries match nothing. */
struct Object_Frames {
    const Quorel_2D_Frame* frame = nullptr;
    int more_nb = 0;
    const Quorel_2D_Frame* const* more = nullptr;

    /** How often the object refers to a frame. */
    int Count(const Quorel_2D_Frame* wanted) const;
};

class Frame_Index {
  public:
    struct Row {
        const Quorel_2D_Frame* frame;
        int record;    ///< position in the array of records
        bool checked;  ///< its check mark when it was added
    };

    /** Makes room for `room` rows; to be called once. @return false without memory: the index then stays unusable */
    bool Make(int room);
    /** Adds a row, in the order of the records; a null frame is left out. No more than there is room for. */
    void Add(const Row& row);

    /** Calls `visit(const Row&)` for the rows of an object's frames in record order; for a row as often as the object
     *  refers to its frame. */
    template <class Visit>
    void Visit_Rows(const Object_Frames& object, Visit visit) {
        const int own = First(object.frame);
        if (object.more_nb <= 0) {
            for (int i = own; i != NONE; i = entries[Place(i)].next) {
                visit(std::as_const(entries[Place(i)].row));
            }
        } else if (Gather(object)) {
            for (const int i : found) {
                visit(std::as_const(entries[Place(i)].row));
            }
        } else {
            for (int i = 0; i < entry_nb; ++i) {
                for (int times = object.Count(entries[Place(i)].row.frame); times > 0; --times) {
                    visit(std::as_const(entries[Place(i)].row));
                }
            }
        }
    }

  private:
    static constexpr int NONE = -1;
    struct Entry {
        Row row;
        int next;  ///< entry of the frame's next row, or NONE
        int last;  ///< in the first entry of a frame: the last one
    };

    struct Free_Memory {
        void operator()(void* memory) const { std::free(memory); }
    };

    static std::size_t Place(int i) { return static_cast<std::size_t>(i); }
    std::size_t Slot(const Quorel_2D_Frame* frame) const;
    /** First entry of a frame, or NONE. */
    int First(const Quorel_2D_Frame* frame) const { return frame != nullptr ? slots[Slot(frame)] : NONE; }
    /** The entries of an object's frames in order, into `found`. @return false without memory */
    bool Gather(const Object_Frames& object);

    std::unique_ptr<Entry[], Free_Memory> entries;  ///< in record order
    int entry_nb = 0;
    std::unique_ptr<int[], Free_Memory> slots;  ///< hash table of the first entries; at least half of it is NONE
    int slot_bits = 0;
    std::vector<int> found;
};
