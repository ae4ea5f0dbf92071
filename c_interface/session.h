/** What stands behind the C interface: handles, the running calls, and the events that wait to be told. */
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <span>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "c_interface/kit_panels.h"
#include "host/kit_dataset.h"

namespace c_interface {

/** What a handle names. Part of the handle's number: one of another kind is told from one that is gone. */
enum class Kind : std::uint8_t { Panel = 1, Volume, Class, File };

/** What a handle stands for. */
class Object {
  public:
    explicit Object(Kind of_kind) : kind(of_kind) {}
    virtual ~Object() = default;
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

    const Kind kind;
    kit_handle handle = 0;
    std::string error;  // the last one, as kit_error_text gives it
};

/** Ends a function of the interface: its status, and what was wrong as a constant text. */
struct Failure {
    kit_status status;
    const char* reason;
};

/** Ends the function with that status unless `is_right`. */
inline void Require(bool is_right, kit_status status, const char* reason) {
    if (!is_right) {
        throw Failure{status, reason};
    }
}

/** Numbers of objects, and the objects that are still needed though their numbers are gone. */
class Handle_Table {
  public:
    kit_handle Add(std::unique_ptr<Object> object);
    /** Null: no such handle. */
    Object* Find(kit_handle handle) const;
    /** The handle is dead from now on. */
    std::unique_ptr<Object> Take(kit_handle handle);
    /** Handles of a kind, the oldest object first. */
    std::vector<kit_handle> All(Kind kind) const;
    void Clear();

  private:
    struct Slot {
        std::uint32_t generation = 0;
        std::uint64_t made = 0;  // order of making
        std::unique_ptr<Object> object;
    };
    std::vector<Slot> slots;
    std::uint64_t made_nb = 0;
};

/** An event that waits. */
struct Event {
    std::uint32_t kind = 0;
    kit_handle panel = 0;
    kit_handle object = 0;
    std::uint64_t flags = 0;
    std::int32_t level = 0;
    std::int32_t index = 0;
    std::int32_t from = 0;
    std::string text = {};  // UTF-8
};

/** One per process, as the kits are. */
class Session {
  public:
    static Session& The();

    bool is_started = false;
    std::thread::id thread;
    kit_settings settings = {};
    Handle_Table handles;
    std::string error;                  // of no living handle
    std::vector<std::string> mistakes;  // of the contract, UTF-8
    std::string module_line;
    std::string answer;  // to the question that is being asked, in the code page
    bool is_asking_name = false;
    int depth = 0;  // functions of the interface that are running
    bool is_delivering = false;

    void Start(const kit_settings& wanted);
    void Stop();

    /** Keeps an event. The flags of KIT_EVENT_UPDATE are collected: panels learn of them first. */
    void Tell(Event event);
    /** All panels are to learn this when the running function ends. Not told to the host. */
    void Announce(std::uint64_t flags) { announced |= flags; }
    /** Asks the host at once. @return its answer, `otherwise` without a host that hears */
    std::int32_t Ask(const Event& event, std::int32_t otherwise);
    /** The object lives until no function runs. */
    void Give_Back(std::unique_ptr<Object> object);
    /** What is to be done when a function ends: gone objects, flags to the panels, events to the host. */
    void Settle();
    /** A function of the interface runs, or something that must not be interrupted by telling. */
    bool Is_Running() const { return depth > 0; }

  private:
    std::int32_t Call_Host(const Event& event);
    void Bury();
    void Panels_Learn(std::uint64_t flags);
    void Deliver();

    std::vector<Event> waiting;
    std::vector<std::unique_ptr<Object>> gone;
    std::uint64_t requested = 0;  // flags by panels, to be told to the host too
    std::uint64_t announced = 0;  // flags by the host
};

/** Notes what went wrong, at the handle when it lives. @return the status */
kit_status Error_Note(const char* function, kit_handle handle, const Failure& failure) noexcept;

/** Counts a running function; the outermost one settles at its end. */
class Running {
  public:
    Running() { ++Session::The().depth; }
    ~Running() { --Session::The().depth; }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;
};

/** Ends the outermost function. */
void Call_End() noexcept;

/** The body of every function: on the right thread, started, and nothing thrown leaves it.
 *  @param work returns nothing; throws Failure */
template <class Work>
kit_status Call(const char* function, kit_handle handle, Work work) noexcept {
    Session& session = Session::The();
    kit_status status = KIT_OK;
    try {
        Require(session.is_started, KIT_ERROR_STATE, "kit_start was not called");
        if (std::this_thread::get_id() != session.thread) {
            return KIT_ERROR_THREAD;  // nothing is noted: the notes belong to the user-interface thread
        }
        const Running running;
        work();
    } catch (const Failure& failure) {
        status = Error_Note(function, handle, failure);
    } catch (const std::bad_alloc&) {
        status = Error_Note(function, handle, {KIT_ERROR_MEMORY, "no memory"});
    } catch (...) {
        status = Error_Note(function, handle, {KIT_ERROR_INTERNAL, "an unexpected error"});
    }
    if (session.depth == 0) {
        Call_End();
    }
    return status;
}

/** The living object of that kind, or a Failure. */
template <class Type>
Type& Object_Of(kit_handle handle) {
    Object* const object = Session::The().handles.Find(handle);
    Require(object != nullptr, KIT_ERROR_HANDLE, "the handle is not alive");
    Require(object->kind == Type::KIND, KIT_ERROR_KIND, "the handle is of another kind");
    return static_cast<Type&>(*object);
}

/** The body of every function that gives a handle back. */
template <class Type>
kit_status Destroy(const char* function, kit_handle handle) {
    return Call(function, handle, [&] {
        Object_Of<Type>(handle);
        Session& session = Session::The();
        session.Give_Back(session.handles.Take(handle));
    });
}

/** The caller's struct in the present version: what its version does not have is 0.
 *  @tparam least bytes of the first version */
template <class Struct>
Struct Struct_Of(const Struct* given, std::size_t least = sizeof(Struct)) {
    Require(given != nullptr, KIT_ERROR_ARGUMENT, "a struct is null");
    std::uint32_t size = 0;
    std::memcpy(&size, given, sizeof size);
    Require(size >= least && size <= 65536, KIT_ERROR_SIZE, "the struct's size is not set to its sizeof");
    Struct whole = {};
    std::memcpy(&whole, given, size < sizeof whole ? size : sizeof whole);
    return whole;
}

/** Fills the caller's struct, as much of it as its version has. */
template <class Struct>
void Struct_Fill(Struct* out, Struct whole, std::size_t least = sizeof(Struct)) {
    Require(out != nullptr, KIT_ERROR_ARGUMENT, "a struct is null");
    std::uint32_t size = 0;
    std::memcpy(&size, out, sizeof size);
    Require(size >= least && size <= 65536, KIT_ERROR_SIZE, "the struct's size is not set to its sizeof");
    std::memcpy(&whole, &size, sizeof size);
    std::memcpy(out, &whole, size < sizeof whole ? size : sizeof whole);
}

/** Writes to a place that the caller must give. */
template <class Type>
void Write_To(Type* out, Type value) {
    Require(out != nullptr, KIT_ERROR_ARGUMENT, "a result's place is null");
    *out = value;
}

/** Answers a question for an array by the rule of all of them. */
template <class Type>
void Array_Out(std::span<const Type> array, Type* out, std::uint32_t room, std::uint32_t* needed) {
    const auto size = static_cast<std::uint32_t>(array.size());
    if (needed != nullptr) {
        *needed = size;
    }
    if (out == nullptr) {
        Require(room == 0, KIT_ERROR_ARGUMENT, "there is room and no place to write to");
        Require(needed != nullptr, KIT_ERROR_ARGUMENT, "neither a place to write to nor one for the size");
        return;
    }
    Require(room >= size, KIT_ERROR_ROOM, "too little room");
    if (size != 0) {
        std::memcpy(out, array.data(), array.size_bytes());
    }
}

/** The same for a text of the system's code page; the ending zero counts. @param text null: empty */
void Text_Out(const char* text, char* out, std::uint32_t room, std::uint32_t* needed);
/** The same for a text that is UTF-8 already. */
void Utf8_Out(const std::string& text, char* out, std::uint32_t room, std::uint32_t* needed);

}  // namespace c_interface
