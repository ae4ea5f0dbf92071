#include <algorithm>
#include <atomic>
#include <optional>
#include <system_error>

#include "dcmtk/dcmdata/dcdeftag.h"
#include "dcmtk/dcmdata/dcuid.h"
#include "workbench/archive/archive_cache.h"
#include "workbench/archive/archive_client.h"
#include "workbench/archive/archive_intake.h"
#include "workbench/archive/archive_receiver.h"
#include "workbench/archive/archive_requests.h"
#include "workbench/volumes/message_text.h"

namespace workbench::archive {

namespace {

constexpr std::size_t LIST_MOST = 256U * 1024U;  // bytes of the list of those that failed
constexpr std::size_t PENDING_EACH = 2;          // answers for an image, at most

const char* Model_Of(const Archive_Settings& archive) {
    return archive.is_moved ? UID_MOVEStudyRootQueryRetrieveInformationModel
                            : UID_GETStudyRootQueryRetrieveInformationModel;
}

std::vector<Proposal> Proposals(const Archive_Settings& archive) {
    std::vector<Proposal> proposals;
    if (!archive.is_moved) {
        proposals = Stored_Proposals();
    }
    proposals.insert(proposals.begin(), {Model_Of(archive), Plain_Syntaxes()});
    return proposals;
}

/** Fetches one series: over the connection that it was asked for by (C-GET), or over one that the archive makes to
 *  this program (C-MOVE). */
class Retrieval {
  public:
    Retrieval(const Archive_Settings& its_archive, const Series& its_series, const Load_Progress& progress,
              const Retrieve_Limits& limits)
        : archive(its_archive),
          series(its_series),
          its_limits(limits),
          watch([this, progress](double done) { return May_Go_On(progress, done); }),
          association(its_archive, watch, Proposals(its_archive)) {}

    /** @throw Archive_Failure */
    void Run(const std::filesystem::path& into);
    int Image_Count() const { return intake ? intake->Count() : 0; }

  private:
    bool May_Go_On(const Load_Progress& progress, double done);
    void Ask();
    /** Takes what comes until the last answer. */
    void Take_All();
    /** @return whether that was the last answer */
    bool Note(const Archive_Message& message);
    void Check(const Archive_Message& last) const;
    void Progress_Tell(int remaining);

    const Archive_Settings& archive;
    const Series& series;
    const Retrieve_Limits& its_limits;
    std::size_t pending = 0;  ///< answers that came
    std::uint64_t heard = 0;  ///< signs of life of the connection that the archive makes
    std::optional<Series_Intake> intake;
    std::optional<Store_Receiver> receiver;
    Connection_Watch watch;
    Archive_Association association;
    T_ASC_PresentationContextID context = 0;
    std::uint16_t number = 0;
    int failed = -1;
    int completed = -1;
    int warned = 0;
};

bool Retrieval::May_Go_On(const Load_Progress& progress, double done) {
    if (receiver) {
        // The archive need not say a word here while it speaks there.
        if (const std::uint64_t now = receiver->Signs_Of_Life(); now != heard) {
            heard = now;
            watch.Moved();
            Progress_Tell(-1);
        }
        if (receiver->Has_Failed()) {
            return false;
        }
    }
    return !progress || progress(done);
}

void Retrieval::Ask() {
    const std::string model = Model_Of(archive);
    context = association.Context_Of(model);
    if (context == 0) {
        throw Refusal(Archive_Fault::Refused, archive,
                      std::string("does not give images by ") + (archive.is_moved ? "C-MOVE." : "C-GET."));
    }
    DcmDataset keys;
    if (keys.putAndInsertString(DCM_QueryRetrieveLevel, "SERIES").bad() ||
        keys.putAndInsertString(DCM_StudyInstanceUID, series.study.c_str()).bad() ||
        keys.putAndInsertString(DCM_SeriesInstanceUID, series.identifier.c_str()).bad()) {
        throw std::bad_alloc();
    }
    number = association.Message_Number();
    T_DIMSE_Message request = Request_Of(archive.is_moved ? DIMSE_C_MOVE_RQ : DIMSE_C_GET_RQ, model, number);
    if (archive.is_moved) {
        Move_Destination_Set(request, archive.own_title);
    }
    association.Send(context, request, &keys);
}

void Retrieval::Progress_Tell(int remaining) {
    const int done = Image_Count();
    const int all = series.image_count > 0 ? series.image_count : remaining >= 0 ? done + remaining : 0;
    if (all > 0) {
        watch.Done_Set(std::max(watch.Done(), std::min(1.0, static_cast<double>(done) / all)));
    }
}

bool Retrieval::Note(const Archive_Message& message) {
    Answer_Demand(archive, message, archive.is_moved ? DIMSE_C_MOVE_RSP : DIMSE_C_GET_RSP, number);
    if (message.Has_Content()) {
        association.Receive_Data_Set(message, LIST_MOST);
    }
    Progress_Tell(message.Number(DCM_NumberOfRemainingSuboperations));
    failed = std::max(failed, message.Number(DCM_NumberOfFailedSuboperations));
    completed = std::max(completed, message.Number(DCM_NumberOfCompletedSuboperations));
    warned = std::max(warned, message.Number(DCM_NumberOfWarningSuboperations));
    if (!Is_Pending(message.Number(DCM_Status))) {
        return true;
    }
    if (++pending > PENDING_EACH * its_limits.images) {
        throw Refusal(Archive_Fault::Garbled, archive, "answers without end.");
    }
    return false;
}

void Retrieval::Check(const Archive_Message& last) const {
    const int status = last.Number(DCM_Status);
    const int came = Image_Count();
    // What the archive counts, whatever its final word is.
    const int claimed = completed < 0 ? came : completed + std::max(warned, 0);
    const int promised = std::max(series.image_count, claimed + std::max(failed, 0));
    if (came == 0 && status != STATUS_SUCCESS) {
        throw Refusal(Archive_Fault::Refused, archive, "does not give the series: " + Status_Text(last) + ".");
    }
    if (came == 0) {
        throw Refusal(Archive_Fault::Incomplete, archive, "sent no image of the series.");
    }
    if (came < promised) {
        throw Refusal(Archive_Fault::Incomplete, archive,
                      "sent " + volumes::Count_Text(static_cast<std::uint64_t>(came)) + " of " +
                          volumes::Count_Text(static_cast<std::uint64_t>(promised)) + " images" +
                          (status == STATUS_SUCCESS ? "." : ": " + Status_Text(last) + "."));
    }
    const int last_completed = last.Number(DCM_NumberOfCompletedSuboperations);
    const int last_claimed = last_completed + std::max(0, last.Number(DCM_NumberOfWarningSuboperations));
    if (status == STATUS_SUCCESS && last_completed >= 0 && last_claimed != came) {
        throw Refusal(Archive_Fault::Incomplete, archive,
                      "counts " + volumes::Count_Text(static_cast<std::uint64_t>(last_claimed)) + " images, but " +
                          volumes::Count_Text(static_cast<std::uint64_t>(came)) + " came.");
    }
    if (status != STATUS_SUCCESS || failed > 0) {
        throw Refusal(Archive_Fault::Incomplete, archive,
                      "ends with a failure, although " + volumes::Count_Text(static_cast<std::uint64_t>(came)) +
                          " images came: " + Status_Text(last) + ".");
    }
}

void Retrieval::Take_All() {
    Ask();
    while (true) {
        const Archive_Message message = association.Receive();
        const int kind = message.Number(DCM_CommandField);
        if (kind == DIMSE_C_STORE_RQ && !archive.is_moved) {
            intake->Take(association, message);
            Progress_Tell(-1);
            continue;
        }
        if (Note(message)) {
            association.Release();
            if (receiver) {
                receiver->End();
            }
            Check(message);
            return;
        }
    }
}

void Retrieval::Run(const std::filesystem::path& into) {
    intake.emplace(archive, series, into, its_limits);
    if (!archive.is_moved) {
        return Take_All();
    }
    receiver.emplace(archive, association.Place(), *intake);
    try {
        Take_All();
    } catch (Archive_Failure& what) {
        if (what.outcome.fault == Archive_Fault::Cancelled && number != 0) {
            association.Call_Off(context, number);
        }
        receiver->End();
        // What went wrong there is why it ended here.
        if (const std::optional<Archive_Failure> failure = receiver->Failure()) {
            throw *failure;
        }
        if (what.outcome.fault != Archive_Fault::Cancelled && !receiver->Refused_Address().empty()) {
            what.outcome.error += " A connection from " + receiver->Refused_Address() +
                                  " was refused, because that is not the archive's address.";
        }
        throw;
    } catch (...) {
        receiver->End();  // before the folder goes that it writes into
        throw;
    }
    if (const std::optional<Archive_Failure> failure = receiver->Failure()) {
        throw *failure;
    }
}

}  // namespace

Retrieve_Result Series_Retrieve(const Archive_Settings& archive, const Series& series,
                                const std::filesystem::path& root, const Load_Progress& progress,
                                const Retrieve_Limits& limits) {
    Retrieve_Result result;
    result.outcome = Outcome_Of(archive, [&] {
        if (!Is_Identifier(series.study) || !Is_Identifier(series.identifier)) {
            throw Archive_Failure{{Archive_Fault::Settings, "The series has no usable identifier."}};
        }
        Retrieval retrieval(archive, series, progress, limits);
        Fetched_Folder folder(root, series.identifier);
        const auto check = [&](bool is_good) {
            if (!is_good) {
                throw Archive_Failure{
                    {Archive_Fault::Disk, "The images cannot be kept: their folder " + folder.Error() + "."}};
            }
        };
        check(folder.Error().empty());
        const auto keep = [&] {
            result.image_count = retrieval.Image_Count();
            result.folder = folder.Keep();
            check(!result.folder.empty());
        };
        try {
            retrieval.Run(folder.Path());
        } catch (const Archive_Failure& failure) {
            if (failure.outcome.fault == Archive_Fault::Incomplete && retrieval.Image_Count() > 0) {
                keep();
            }
            throw;
        }
        keep();
    });
    return result;
}

}  // namespace workbench::archive
