/** The application's class trees with the journal of their changes: what the editor did to the class objects is noted,
 *  taken back, done again, and kept in a file beside the data.
 *
 *  Objects belong to the caller. They are known by ids made of the names on the way to them when their tree was taken
 *  over: "Anatomy/Head/Brain".
 */
#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <tuple>

#include "kits/dataset/dataset_host.h"
#include "workbench/model/class_journal.h"

namespace workbench {

/** How the objects' texts become the journal's UTF-8 and back. */
struct Class_Text_Coding {
    std::function<std::string(const char*)> to_utf8 = [](const char* text) { return std::string(text); };
    std::function<std::string(const std::string&)> from_utf8 = [](const std::string& text) { return text; };
};

class Class_History {
  public:
    explicit Class_History(Class_Text_Coding text_coding = {}) : coding(std::move(text_coding)) {}

    /** Takes over the trees that live as long as this object, as they are built. Once, before anything else. */
    void Begin(Quorel_1D* curves, Quorel_3D* structures);
    /** The 2D objects are about to be destroyed: forgets them, and their steps. */
    void Images_Leave();
    /** Data were opened. Trees that are left from other data become as they were built; then the changes that the
     *  journal beside the data tells are done. Changes made without data go along with data that have no journal yet.
     *  @param images the new 2D objects, null: none. @return empty, or one sentence for the user */
    std::string Open(Quorel_2D* images, const std::filesystem::path& data);

    /** Compares the objects with what is known, and makes a step of a difference. @return whether there was one */
    bool Note();
    /** Takes the last step back, or does it again, in the objects. @return what it was; none: there is none */
    std::optional<Class_Step> Undo() { return Go(false); }
    std::optional<Class_Step> Redo() { return Go(true); }

    /** Writes the journal beside the data, if there are data and anything happened since. @return empty, or one
     * sentence for the user: then nothing is lost */
    std::string Save();
    /** Changes would be lost at the end of the program. */
    bool Is_Unsaved() const { return journal.Is_Unsaved(); }
    /** The journal's file; empty without data. */
    const std::filesystem::path& File() const { return file; }
    const Class_Journal& Journal() const { return journal; }

  private:
    template <class Object>
    struct Known {
        Object* root = nullptr;
        Class_Tree built;  ///< as it was taken over
        std::map<std::string, Object*> objects;
        std::map<const Object*, std::string> ids;
    };
    template <class Object>
    void Take(Object* root);
    template <class Object>
    void Identify(Object& object, const std::string& id);
    template <class Object>
    Class_Tree Read() const;
    template <class Object>
    bool Note_Kind();
    /** @return false: some action could not be done */
    template <class Object>
    bool Do(const std::vector<Class_Action>& actions);
    template <class Object>
    void Rebuild();
    bool Do_Step(const Class_Step& step, bool redo);
    std::optional<Class_Step> Go(bool redo);
    template <class Object>
    Known<Object>& Of() {
        return std::get<Known<Object>>(known);
    }
    template <class Object>
    const Known<Object>& Of() const {
        return std::get<Known<Object>>(known);
    }

    Class_Text_Coding coding;
    Class_Journal journal;
    std::tuple<Known<Quorel_1D>, Known<Quorel_2D>, Known<Quorel_3D>> known;
    std::filesystem::path file;
};

}  // namespace workbench
