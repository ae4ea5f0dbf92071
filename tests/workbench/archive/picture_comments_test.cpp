// What stands in compressed pictures besides the picture, and is not to leave with an anonymous image.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "dcmtk/config/osconfig.h"
#include "dcmtk/dcmdata/dcdeftag.h"
#include "dcmtk/dcmdata/dcfilefo.h"
#include "dcmtk/dcmdata/dcpixel.h"
#include "dcmtk/dcmdata/dcpixseq.h"
#include "dcmtk/dcmdata/dcpxitem.h"
#include "workbench/archive/picture_comments.h"
#include "workbench/archive/stream_comments.h"

using namespace workbench::archive;

namespace {

using Stream = std::vector<std::uint8_t>;

Stream operator+(Stream a, const Stream& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

Stream Segment(std::uint8_t marker, const std::string& content) {
    const std::size_t length = content.size() + 2;
    Stream stream = {0xFF, marker, static_cast<std::uint8_t>(length >> 8U), static_cast<std::uint8_t>(length)};
    stream.insert(stream.end(), content.begin(), content.end());
    return stream;
}

std::string Zeros(const std::string& text) {
    return std::string(text.size(), '\0');
}

const std::string NAME = "Doe^Jane";
const std::string JFIF("JFIF\0\1\1\0\0\1\0\1\0\0", 14);
const std::string ADOBE("Adobe\0\144\0\0\0\0\1", 12);

/** A JPEG stream with a text in its comments, in a program's segment, and in a comment between two scans. */
Stream Jpeg(const std::string& text) {
    const Stream data = {0x12, 0xFF, 0x00, 0xFE, 0xFF, 0xD0, 0x34};
    return Stream{0xFF, 0xD8} + Segment(0xE0, JFIF) + Segment(0xEE, ADOBE) + Segment(0xE1, text) + Segment(0xFE, text) +
           Segment(0xC0, "frame") + Segment(0xDA, "scan") + data + Segment(0xFE, text) + Segment(0xDA, "scan") + data +
           Stream{0xFF, 0xD9};
}

/** Two parts of a tile, the second up to the end. */
Stream Jpeg_2000(const std::string& text) {
    const std::string comment = std::string("\0\1", 2);
    const Stream header = Segment(0x64, text == NAME ? comment + text : Zeros(comment + text)) + Stream{0xFF, 0x93};
    const Stream data = {1, 2, 0xFF, 0x64, 3, 4};
    const auto length = static_cast<std::uint8_t>(12 + header.size() + data.size());
    const Stream part = Segment(0x90, {0, 0, 0, 0, 0, static_cast<char>(length), 0, 1});
    const Stream last = Segment(0x90, {0, 0, 0, 0, 0, 0, 1, 1});
    return Stream{0xFF, 0x4F} + Segment(0x51, "size") +
           Segment(0x64, text == NAME ? comment + text : Zeros(comment + text)) + part + header + data + last + header +
           data + Stream{0xFF, 0xD9};
}

/** An object with compressed frames, each in pieces. */
class Compressed_Object {
  public:
    explicit Compressed_Object(E_TransferSyntax its_form) : form(its_form), sequence(new DcmPixelSequence(TAG)) {
        sequence->insert(new DcmPixelItem(DcmTag(DCM_PixelItemTag, EVR_OB)));  // where frames begin: not said
    }
    void Add(const Stream& bytes) {
        auto* const item = new DcmPixelItem(DcmTag(DCM_PixelItemTag, EVR_OB));
        ASSERT_TRUE(item->putUint8Array(bytes.data(), bytes.size()).good());
        sequence->insert(item);
    }
    /** Where frames begin. */
    void Table_Set(const Stream& bytes) {
        DcmPixelItem* table = nullptr;
        ASSERT_TRUE(sequence->getItem(table, 0).good());
        ASSERT_TRUE(table->putUint8Array(bytes.data(), bytes.size()).good());
    }
    /** As it is read of a file. */
    DcmDataset& Data_Set(int frame_nb = 1) {
        auto* const pixels = new DcmPixelData(TAG);
        pixels->putOriginalRepresentation(form, nullptr, sequence);
        DcmFileFormat written;
        written.getDataset()->insert(pixels);
        written.getDataset()->putAndInsertString(DCM_NumberOfFrames, std::to_string(frame_nb).c_str());
        const std::string path = testing::TempDir() + "kit_picture_comments.dcm";
        EXPECT_TRUE(written.saveFile(path.c_str(), form).good());
        EXPECT_TRUE(file.loadFile(path.c_str()).good());
        file.getDataset()->loadAllDataIntoMemory();
        std::remove(path.c_str());
        return *file.getDataset();
    }
    Stream Piece(unsigned long number) {
        DcmElement* element = nullptr;
        DcmPixelSequence* read = nullptr;
        DcmPixelItem* item = nullptr;
        Uint8* bytes = nullptr;
        EXPECT_TRUE(file.getDataset()->findAndGetElement(DCM_PixelData, element).good());
        dynamic_cast<DcmPixelData&>(*element).getEncapsulatedRepresentation(form, nullptr, read);
        EXPECT_TRUE(read->getItem(item, number + 1).good());
        item->getUint8Array(bytes);
        return {bytes, bytes + item->getLength()};
    }

  private:
    inline static const DcmTag TAG{DCM_PixelData, EVR_OB};
    E_TransferSyntax form;
    DcmPixelSequence* sequence;
    DcmFileFormat file;
};

}  // namespace

TEST(Picture_Comments, of_jpeg_are_blanked_and_nothing_else_is) {
    Stream stream = Jpeg(NAME);
    const Stream behind = stream + Stream{'D', 'o', 'e'};
    Stream with_more = behind;
    EXPECT_EQ(Jpeg_Comments_Blank(stream), stream.size());
    EXPECT_EQ(stream, Jpeg(Zeros(NAME)));
    EXPECT_EQ(Jpeg_Comments_Blank(with_more), stream.size());
}

TEST(Picture_Comments, of_jpeg_2000_are_blanked_and_nothing_else_is) {
    Stream stream = Jpeg_2000(NAME);
    EXPECT_EQ(Jpeg_2000_Comments_Blank(stream), stream.size());
    EXPECT_EQ(stream, Jpeg_2000(Zeros(NAME)));
}

TEST(Picture_Comments, of_what_is_no_stream_or_ends_early_are_not_vouched_for) {
    const Stream jpeg = Jpeg(NAME);
    const Stream other = Jpeg_2000(NAME);
    for (std::size_t size = 0; size < jpeg.size(); ++size) {
        Stream part(jpeg.begin(), jpeg.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_FALSE(Jpeg_Comments_Blank(part)) << size;
        EXPECT_EQ(part.size(), size);
    }
    for (std::size_t size = 0; size < other.size(); ++size) {
        Stream part(other.begin(), other.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_FALSE(Jpeg_2000_Comments_Blank(part)) << size;
    }
    Stream wrong = jpeg;
    EXPECT_FALSE(Jpeg_2000_Comments_Blank(wrong));
    EXPECT_EQ(wrong, jpeg);
}

TEST(Picture_Comments, a_picture_in_a_program_segment_goes) {
    Stream stream = Stream{0xFF, 0xD8} + Segment(0xE0, JFIF + "thumbnail of the face") + Segment(0xDA, "scan") +
                    Stream{1, 2, 0xFF, 0xD9};
    EXPECT_TRUE(Jpeg_Comments_Blank(stream));
    const std::string text(stream.begin(), stream.end());
    EXPECT_EQ(text.find("thumbnail"), std::string::npos);
}

TEST(Picture_Comments, go_in_every_frame_whatever_pieces_it_has) {
    const Stream whole = Jpeg(NAME);
    const Stream clean = Jpeg(Zeros(NAME));
    const auto half = static_cast<std::ptrdiff_t>(2 * (whole.size() / 4));
    const Stream padded = whole + (whole.size() % 2 == 0 ? Stream{'D', 'o'} : Stream{'D', 'o', 'e'});
    Compressed_Object object(EXS_JPEGProcess1);
    object.Add({whole.begin(), whole.begin() + half});
    object.Add(Stream(whole.begin() + half, whole.end()) + Stream(whole.size() % 2, 0));
    object.Add(padded);
    EXPECT_EQ(Picture_Comments_Blank(object.Data_Set(2)), "");
    EXPECT_EQ(object.Piece(0), Stream(clean.begin(), clean.begin() + half));
    EXPECT_EQ(object.Piece(1), Stream(clean.begin() + half, clean.end()) + Stream(whole.size() % 2, 0));
    EXPECT_EQ(object.Piece(2), clean + Stream(padded.size() - whole.size(), 0));
}

TEST(Picture_Comments, are_told_where_they_cannot_be_found) {
    Compressed_Object jpeg(EXS_JPEGProcess14SV1);
    jpeg.Add(Jpeg_2000(NAME) + Stream(Jpeg_2000(NAME).size() % 2, 0));
    EXPECT_NE(Picture_Comments_Blank(jpeg.Data_Set()), "");
    Compressed_Object film(EXS_MPEG4HighProfileLevel4_1);
    film.Add({1, 2, 3, 4});
    EXPECT_NE(Picture_Comments_Blank(film.Data_Set()), "");
    Compressed_Object runs(EXS_RLELossless);
    runs.Add({1, 2, 3, 4});
    EXPECT_NE(Picture_Comments_Blank(runs.Data_Set()), "");
    DcmDataset plain;
    EXPECT_EQ(Picture_Comments_Blank(plain), "");
}

TEST(Picture_Comments, go_in_each_of_several_pictures_in_one_piece) {
    for (const bool is_2000 : {false, true}) {
        SCOPED_TRACE(is_2000);
        // Of JPEG 2000 only with a length in the last part is it known where the next picture begins.
        const auto picture = [&](const std::string& text) {
            Stream made = is_2000 ? Jpeg_2000(text) : Jpeg(text);
            const Stream last = Segment(0x90, {0, 0, 0, 0, 0, 0, 1, 1});
            const auto at = std::search(made.begin(), made.end(), last.begin(), last.end());
            if (is_2000) {
                *(at + 9) = static_cast<std::uint8_t>(made.end() - at - 2);
            }
            made.resize(made.size() + made.size() % 2);
            return made;
        };
        Compressed_Object object(is_2000 ? EXS_JPEG2000 : EXS_JPEGProcess1);
        object.Add(picture(NAME) + picture(NAME));
        EXPECT_EQ(Picture_Comments_Blank(object.Data_Set(2)), "");
        EXPECT_EQ(object.Piece(0), picture(Zeros(NAME)) + picture(Zeros(NAME)));
    }
}

TEST(Picture_Comments, are_not_vouched_for_where_there_are_more_pictures_than_frames) {
    const Stream whole = Jpeg_2000(NAME);
    for (const int frame_nb : {1, 2}) {
        Compressed_Object object(EXS_JPEG2000);
        object.Add(whole + whole);  // the last part of the first one has no length: its end is not that of the second
        EXPECT_EQ(Picture_Comments_Blank(object.Data_Set(frame_nb)).empty(), frame_nb == 2);
        if (frame_nb == 2) {
            EXPECT_EQ(object.Piece(0), Jpeg_2000(Zeros(NAME)) + Jpeg_2000(Zeros(NAME)));
        }
    }
}

TEST(Picture_Comments, are_not_vouched_for_where_there_are_fewer_pictures_than_frames) {
    Compressed_Object more(EXS_JPEGProcess1);
    more.Add(Jpeg(NAME) + Stream(Jpeg(NAME).size() % 2, 0));
    EXPECT_NE(Picture_Comments_Blank(more.Data_Set(2)), "");
}

TEST(Picture_Comments, in_the_table_of_where_frames_begin_are_noticed) {
    const Stream whole = Jpeg(NAME) + Stream(Jpeg(NAME).size() % 2, 0);
    const auto behind = static_cast<std::uint8_t>(whole.size() + 8);
    for (const auto& [table, is_one] :
         {std::pair{Stream{0, 0, 0, 0, behind, 0, 0, 0}, true}, std::pair{Stream{0, 0, 0, 0, 4, 0, 0, 0}, false},
          std::pair{Stream{'D', 'o', 'e', '^', 'J', 'a', 'n', 'e'}, false}, std::pair{Stream{0, 0, 0, 0}, false},
          std::pair{Stream{0, 0, 0, 0, behind, 0, 0, 0, 'D', 'o', 'e', ' '}, false}}) {
        Compressed_Object object(EXS_JPEGProcess1);
        object.Table_Set(table);
        object.Add(whole);
        object.Add(whole);
        EXPECT_EQ(Picture_Comments_Blank(object.Data_Set(2)).empty(), is_one) << table.size();
    }
}

namespace {

/** A run-length coded picture of two segments with two pixels each; `name` stands in the header and behind both. */
Stream Run_Length(const std::string& name) {
    Stream picture(64, 0);
    const Stream text(name.begin(), name.end());
    const Stream first = Stream{1, 7, 8} + text;       // one by one
    const Stream second = Stream{128, 255, 9} + text;  // nothing, and one twice
    picture[0] = 2;
    picture[4] = 64;
    picture[8] = static_cast<std::uint8_t>(64 + first.size());
    std::ranges::copy(text, picture.begin() + 12);
    const Stream whole = picture + first + second;
    return whole + Stream(whole.size() % 2, 0);
}

class Run_Length_Object : public Compressed_Object {
  public:
    Run_Length_Object() : Compressed_Object(EXS_RLELossless) {}
    DcmDataset& Data_Set(int frame_nb, Uint16 columns = 2) {
        DcmDataset& data_set = Compressed_Object::Data_Set(frame_nb);
        data_set.putAndInsertUint16(DCM_Rows, 1);
        data_set.putAndInsertUint16(DCM_Columns, columns);
        data_set.putAndInsertUint16(DCM_SamplesPerPixel, 1);
        data_set.putAndInsertUint16(DCM_BitsAllocated, 16);
        return data_set;
    }
};

}  // namespace

TEST(Picture_Comments, of_run_length_coding_go_in_the_header_and_behind_every_segment) {
    Run_Length_Object object;
    object.Add(Run_Length(NAME));
    object.Add(Run_Length(NAME));
    EXPECT_EQ(Picture_Comments_Blank(object.Data_Set(2)), "");
    EXPECT_EQ(object.Piece(0), Run_Length(Zeros(NAME)));
    EXPECT_EQ(object.Piece(1), Run_Length(Zeros(NAME)));
}

TEST(Picture_Comments, of_run_length_coding_are_not_vouched_for_where_a_piece_is_no_frame) {
    Run_Length_Object more;
    more.Add(Run_Length(NAME));
    more.Add(Run_Length(NAME));
    EXPECT_NE(Picture_Comments_Blank(more.Data_Set(1)), "");
    for (const Uint16 columns : {Uint16{1}, Uint16{3}}) {
        Run_Length_Object other;
        other.Add(Run_Length(NAME));
        EXPECT_NE(Picture_Comments_Blank(other.Data_Set(1, columns)), "") << columns;
    }
    struct Change {
        std::size_t at;
        std::uint8_t to;
    };
    for (const Change& change : {Change{0, 0}, Change{0, 1}, Change{0, 3}, Change{1, 1}, Change{4, 66}, Change{8, 60},
                                 Change{8, 66}, Change{9, 1}}) {
        Stream picture = Run_Length(NAME);
        picture[change.at] = change.to;
        Run_Length_Object wrong;
        wrong.Add(picture);
        EXPECT_NE(Picture_Comments_Blank(wrong.Data_Set(1)), "") << change.at << " becomes " << int{change.to};
    }
}

TEST(Picture_Comments, of_run_length_coding_are_not_vouched_for_without_a_size) {
    Run_Length_Object object;
    object.Add(Run_Length(NAME));
    EXPECT_NE(Picture_Comments_Blank(object.Data_Set(1, 0)), "");
}

TEST(Picture_Comments, of_jpeg_2000_are_not_vouched_for_where_the_data_of_a_tile_hold_a_marker) {
    for (const bool has_length : {false, true}) {
        SCOPED_TRACE(has_length);
        const auto stream = [&](const Stream& data) {
            const auto length = static_cast<char>(has_length ? 14 + data.size() : 0);
            return Stream{0xFF, 0x4F} + Segment(0x51, "size") + Segment(0x90, {0, 0, 0, 0, 0, length, 0, 1}) +
                   Stream{0xFF, 0x93} + data + Stream{0xFF, 0xD9};
        };
        // The start of a packet has a number that looks like an end.
        Stream made = stream({1, 0xFF, 0x91, 0, 4, 0xFF, 0xD9, 2, 0xFF, 0x92, 3, 0xFF, 0x8F, 4});
        EXPECT_EQ(Jpeg_2000_Comments_Blank(made), made.size());
        made = stream({1, 2, 0xFF, 0x90, 3, 4});
        EXPECT_FALSE(Jpeg_2000_Comments_Blank(made));
    }
}
