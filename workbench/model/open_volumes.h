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
    /** Takes over what was opened, at least one volume. All former volumes go, and what was done to them. The one
     *  with most slices that is no scout becomes the current one, at its middle, in the first window of its file.
     *  @param statistics of every volume @throw std::bad_alloc: no volume is open then */
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
    /** Volumes with work that is not saved. */
    std::vector<int> Unsaved(const Session& current_session) const;

  private:
    struct Entry {
        Volume_Facts facts;
        Volume_View view;
        Session session;  // without volume for the current one
        std::shared_ptr<const Label_State> labels;
    };
    std::vector<Entry> volumes;
    std::vector<std::filesystem::path> files;
    std::vector<volumes::File_Origin> origins;
    int current = -1;
};

}  // namespace workbench
