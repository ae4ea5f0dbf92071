/** The data objects that the panels see: a volume, one frame per slice, the image window. */
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "kits/dataset/dataset_host.h"
#include "workbench/model/session.h"

class Volume_Objects {
  public:
    Volume_Objects();
    ~Volume_Objects();
    Volume_Objects(const Volume_Objects&) = delete;
    Volume_Objects& operator=(const Volume_Objects&) = delete;

    /** Makes the objects of a session's volume, histograms included, and names them in the host variables. The
     * session's levels must outlive them. */
    void Build(const Session& session);
    /** Takes the objects away; nothing is shown. */
    void Clear();

    Quorel_Window* Window() { return &window; }
    /** The frame of a slice; null outside. */
    Quorel_2D* Frame(int slice) const;
    /** The slice of a frame; -1 for any other object. */
    int Slice_Of(const Quorel_2D* frame) const;
    /** Makes a slice the one that the window shows; tells nobody. */
    void Show(int slice);
    /** Selects the frames of slices first .. last and no other: what the histogram is made of. */
    void Select(int first, int last);
    /** Builds the frames' histograms anew. @param tag only pixels of this TAG count; -1: all */
    void Histograms_Build(const Session& session, int tag);

  private:
    Quorel_Window window;
    std::string title;
    std::string descriptor;
    std::vector<std::unique_ptr<Level_Frame>> data;  // outlive the frames
    std::unique_ptr<Quorel_2D> root;
    std::unique_ptr<Quorel_2D> volume;
    std::vector<std::unique_ptr<Quorel_2D>> frames;
};
