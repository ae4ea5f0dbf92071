/** All volumes that are open, each with the work on it; one of them is the current one. */
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "workbench/model/label_state.h"
#include "workbench/model/session.h"
#include "workbench/model/slice_render.h"
#include "workbench/volumes/image_folder.h"
#include "workbench/volumes/volume_statistics.h"
#include "workbench/volumes/waiting_levels.h"

namespace workbench {

/** What a volume is called, and where its slices came from. */
struct Volume_Facts {
    std::string title;       ///< UTF-8
    std::string descriptor;  ///< kind of image
    std::uint16_t modality = 0;
    bool is_scout = false;
    bool is_cine = false;                     ///< the slices are moments of one place
    std::vector<std::int32_t> file_of_slice;  ///< in the order of display; an index into Open_Volumes::Files
};

/** How the user looks at a volume. */
struct Volume_View {
    volumes::Volume_Statistics statistics;
    Grey_Window window;
    int slice = 0;
    std::optional<double> background;  ///< grey value up to which what surrounds the image is left out; none: not known
    std::string orientation;           ///< as Letters_Set takes it, chosen by the user; empty: not
};

/** Owns the sessions of the volumes but for the current one, whose session is passed to every operation that needs it.
 */
class Open_Volumes {
  public:
    /** What people have opened a folder for, of the volumes in it, at least one: no scout, and most slices. */
    static std::size_t First_Of(const volumes::Image_Folder& folder);
    /** Takes over what was opened, at least one volume. All former volumes go, and what was done to them. First_Of
     *  becomes the current one, at its middle, in the first window of its file.
     *  @param statistics of every volume that has levels @throw std::bad_alloc: no volume is open then */
    void Take(volumes::Image_Folder&& folder, std::vector<volumes::Volume_Statistics>&& statistics,
              Session& current_session);
    void Clear(Session& current_session);

    int Nb() const { return static_cast<int>(volumes.size()); }
    /** The current volume; -1 without volumes. */
    int Current() const { return current; }
    const Volume_Facts& Facts(int volume) const { return volumes[static_cast<std::size_t>(volume)].facts; }
    const Volume_View& View(int volume) const { return volumes[static_cast<std::size_t>(volume)].view; }
    Volume_View& View(int volume) { return volumes[static_cast<std::size_t>(volume)].view; }
    const Session& Session_Of(int volume, const Session& current_session) const;
    /** Files that the volumes came from. */
    const std::vector<std::filesystem::path>& Files() const { return files; }
    /** Whose images each of them holds. */
    const std::vector<volumes::File_Origin>& Origins() const { return origins; }

    /** What describes the labels of a volume that is not the current one; null: nothing was kept. */
    const Label_State* Labels_Kept(int volume) const { return volumes[static_cast<std::size_t>(volume)].labels.get(); }
    /** @param state may be shared by many volumes; null: nothing is kept any more */
    void Labels_Keep(int volume, std::shared_ptr<const Label_State> state) {
        volumes[static_cast<std::size_t>(volume)].labels = std::move(state);
    }

    /** Makes another one the current one, but see Label_Attributes::Switch. Levels stay where they are in memory. */
    void Switch(int wanted, Session& current_session);

    /** Whether a volume's pixels are still to be read. */
    bool Is_Waiting(int volume, const Session& current_session) const;
    /** Volumes whose pixels are there. */
    int Read_Nb(const Session& current_session) const;
    /** Where they are to be read from; only of a volume that waits. */
    volumes::Waiting_Levels Wanted_Levels(int volume, const Session& current_session) const;
    /** Takes over pixels that were read. The first time the volume is shown in the first window of its file.
     *  @throw std::bad_alloc: the volume still waits */
    void Levels_Take(int volume, volumes::Volume&& read, const volumes::Volume_Statistics& statistics,
                     Session& current_session);
    /** Volumes to be freed so that the levels of all take no more than so many bytes, as far as that is possible:
     *  longest not looked at first; never the current one, one with unsaved work, or one that cannot be read again. */
    std::vector<int> To_Leave(std::uint64_t bytes, const Session& current_session) const;
    /** Frees the levels of a volume that To_Leave names; the work on it stays. */
    void Levels_Leave(int volume) { volumes[static_cast<std::size_t>(volume)].session.Levels_Leave(); }
    /** Volumes with work that is not saved. */
    std::vector<int> Unsaved(const Session& current_session) const;

  private:
    struct Entry {
        Volume_Facts facts;
        Volume_View view;
        Session session;  // without volume for the current one
        std::shared_ptr<const Label_State> labels;
        std::vector<volumes::Slice_Identity> slices;  // where pixels can be read again, else empty
        bool was_shown = false;                       // its levels have been there
        std::uint64_t used = 0;                       // grows with each time that a volume is shown
    };
    Session& Own_Session(int volume, Session& current_session);

    std::vector<Entry> volumes;
    std::vector<std::filesystem::path> files;
    std::vector<volumes::File_Origin> origins;
    int current = -1;
    std::uint64_t last_used = 0;
};

}  // namespace workbench
