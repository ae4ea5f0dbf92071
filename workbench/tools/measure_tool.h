/** Distances by two clicks, angles by three. */
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "workbench/tools/tool.h"
#include "workbench/tools/tool_host.h"

namespace workbench {

/** A place in a volume, in voxels along x, y and slices; sides of voxels at whole numbers. */
using Measured_Point = std::array<double, 3>;
Measured_Point Measured_Point_Of(const Tool_Spot& spot);

/** @param spacing millimetres from voxel to voxel */
double Distance_Mm(const Measured_Point& from, const Measured_Point& to, const std::array<double, 3>& spacing);
/** At the middle one of three points, 0 .. 180 degrees; 0 where two of them are one. */
double Angle_Degrees(const Measured_Point& from, const Measured_Point& at, const Measured_Point& to,
                     const std::array<double, 3>& spacing);

enum class Measure_Kind { Distance, Angle };

/** The left button sets points and moves those that are there, the right one removes what it hits. Measurements stay
 *  with their volume until it is closed; they are no part of the labels or their history. */
class Measure_Tool : public Image_Tool {
  public:
    /** @param tool_host outlives the tool */
    explicit Measure_Tool(const Tool_Host& tool_host) : host(tool_host) {}

    /** What the next click begins. */
    void Kind_Set(Measure_Kind wanted);
    std::string Hint() const override;
    bool Is_For(Tool_Hand hand) const override { return hand != Tool_Hand::Pen; }
    Pixel_Rect Press(const Tool_Spot& spot, Tool_Hand hand) override;
    Pixel_Rect Move(const Tool_Spot& spot) override;
    void Release() override;
    void Hover(const Tool_Spot& spot) override;
    bool Cancel() override;
    bool Step_Back() override;
    /** All that lie in whatever picture, also while another tool is in hand. */
    void Paths_Add(const Plane_Cut& cut, std::vector<Shown_Path>& paths) const override;
    /** Of the volume that is in hand. */
    void Remove_All();
    /** Their texts, in the order in which they were made: "12.5 mm". */
    std::vector<std::string> Texts() const;

  private:
    struct Measurement {
        Measure_Kind kind = Measure_Kind::Distance;
        std::vector<Measured_Point> points;
        std::size_t Wanted() const { return kind == Measure_Kind::Distance ? 2 : 3; }
        bool Is_Done() const { return points.size() == Wanted(); }
    };
    struct Hit {
        std::size_t measurement = 0;
        std::size_t point = 0;
    };
    std::vector<Measurement>& All() { return of_volume[host.work().Serial()]; }
    std::optional<Hit> Hit_At(const Tool_Spot& spot);
    std::string Text_Of(const Measurement& measurement) const;
    /** The one that waits for further points; null: none. */
    Measurement* Begun();

    const Tool_Host& host;
    Measure_Kind kind = Measure_Kind::Distance;
    std::map<std::uint64_t, std::vector<Measurement>> of_volume;  // by the volume's number
    std::optional<Hit> dragged;
    std::optional<Measured_Point> pointer;
};

}  // namespace workbench
