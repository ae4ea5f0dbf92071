/** The data objects that the panels see: volumes, one frame per slice, the files that they came from, the image window.
 */
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "kits/dataset/dataset_host.h"
#include "workbench/model/open_volumes.h"
#include "workbench/model/panel_scale.h"
#include "workbench/slice_frames.h"

namespace workbench {

/** Where a frame is: -1 for no frame. */
struct Frame_Place {
    int volume = -1;
    int slice = -1;
};

/** What the pixels of a volume's histograms are. */
struct Counted_Pixels {
    int tag = -1;              ///< only those of this TAG; -1: all
    bool is_smoothed = false;  ///< means of 3 x 3 pixels instead, in ninths of a level; not for colours
    /** Grey value up to which what surrounds the image is left out (see Background_Leave_Out); not for colours. */
    std::optional<double> background;
};

/** How far the histograms of a volume are. */
enum class Counting_State {
    Coming,  ///< being counted, or to be
    Done,
    Waiting,  ///< the volume's pixels are not read
    Failed,   ///< there was not enough memory; the volume has no histograms
};

class Volume_Objects {
  public:
    Volume_Objects();
    ~Volume_Objects();
    Volume_Objects(const Volume_Objects&) = delete;
    Volume_Objects& operator=(const Volume_Objects&) = delete;

    /** Makes the objects of all open volumes, without histograms, and names them and their files in the host
     *  variables. Grey values are told in the unit of Panel_Scale_Of. The sessions' levels must outlive them, or be
     *  told gone. The current volume is selected. */
    void Build(const Open_Volumes& volumes, const Session& current_session);
    /** The levels of a volume are there. */
    void Levels_Came(int volume, const Session& session);
    /** The levels of a volume are not there any more: nothing of it can be sampled, and it has no histograms. */
    void Levels_Gone(int volume);
    /** The slices of every volume, in frames of their own, for whoever counts them; none of volumes that have
     *  histograms or no levels. Those of the others are coming now. Throws std::bad_alloc. */
    std::vector<Slices_To_Count> Counting_Begin(const Open_Volumes& volumes, const Session& current_session);
    /** Takes the histograms over that were counted of all pixels. Volumes that were counted in the meantime, perhaps in
     *  another way or in vain, stay so. @param counted of every volume, by Counting_Begin since the last Build */
    void Counts_Take(std::vector<Slices_To_Count>&& counted);
    /** Nothing more is coming: volumes without histograms stay so. */
    void Counts_Fail();
    /** Of the current volume; without one nothing is coming. */
    Counting_State Counting() const { return Current() != nullptr ? Current()->counting : Counting_State::Done; }
    /** Takes the objects away; nothing is shown. */
    void Clear();

    Quorel_Window* Window() { return &window; }
    /** Makes another volume the one that Frame, Slice_Of, Select and Histograms_Build mean. */
    void Current_Set(int wanted) { current = wanted; }
    /** The root of the 2D class tree; null without a volume. */
    Quorel_2D* Root() const { return root.get(); }
    /** The frame of a slice of the current volume; null outside. */
    Quorel_2D* Frame(int slice) const;
    /** The slice of a frame of the current volume; -1 for any other object. */
    int Slice_Of(const Quorel_2D* frame) const;
    /** Of any volume's frame. */
    Frame_Place Place_Of(const Quorel_2D* frame) const;
    /** Makes a slice the one that the window shows; tells nobody. */
    void Show(int slice);
    /** Selects the frames of slices first .. last and no other: what the histogram is made of. */
    void Select(int first, int last);
    /** The frame to show when the selection has changed: the shown one if it is selected, else the first selected one
     *  of the current volume, else of all; null when none is. */
    Quorel_2D* Selected_Frame() const;
    /** Whose images a file of "$DB_2D_FILE_PT" holds, in the panels' letters; null for anything else. */
    const volumes::File_Origin* Origin_Of(const void* file_record) const;
    /** All selected frames, of whatever volume, by volume and slice. */
    std::vector<Frame_Place> Selected() const;
    /** Builds the current volume's histograms anew. @return false: there was not enough memory; it has none then */
    bool Histograms_Build(const Session& session, const Counted_Pixels& counted);

  private:
    /** A file as the panels see it. */
    struct File {
        File_Record record;
        std::string path;
        volumes::File_Origin origin;
        std::vector<Quorel_2D_Frame*> frames;
        std::vector<unsigned short> flags;
    };
    struct Shown_Volume {
        std::string name;
        std::string descriptor;
        std::unique_ptr<Slice_Frame> cine;               // all moments as one
        std::vector<std::unique_ptr<Slice_Frame>> data;  // outlive the frames
        Quorel_2D_Frame* further[1] = {nullptr};
        Counting_State counting = Counting_State::Coming;
        std::unique_ptr<Quorel_2D> object;
        std::vector<std::unique_ptr<Quorel_2D>> frames;
    };
    void Volume_Build(int at, const Volume_Facts& facts, const Session& session);
    void Files_Build(const Open_Volumes& volumes);
    const Shown_Volume* Current() const;
    static void Histograms_Count(Shown_Volume& volume, const Session& session, const Counted_Pixels& counted);

    Quorel_Window window;
    std::unique_ptr<Quorel_2D> root;
    std::vector<std::unique_ptr<Shown_Volume>> shown;
    std::vector<std::unique_ptr<File>> files;
    std::unordered_map<const void*, const File*> file_of_record;
    std::unordered_map<const Quorel_2D*, Frame_Place> places;
    int current = -1;
};

}  // namespace workbench
