// A build without the network: nothing can be asked of an archive.
#include "workbench/archive/archive_client.h"

namespace workbench::archive {

namespace {

Archive_Outcome Absent() {
    return {Archive_Fault::Refused, "This build speaks with no archives."};
}

template <class Result>
Result Absent_As() {
    Result result;
    result.outcome = Absent();
    return result;
}

}  // namespace

Archive_Outcome Archive_Test(const Archive_Settings&, const Load_Progress&, Archive_Abilities*) {
    return Absent();
}

bool Can_Encrypt() {
    return false;
}

Search_Result<Study> Studies_Search(const Archive_Settings&, const Study_Query&, const Load_Progress&) {
    return Absent_As<Search_Result<Study>>();
}

Search_Result<Series> Series_Search(const Archive_Settings&, const std::string&, const Load_Progress&) {
    return Absent_As<Search_Result<Series>>();
}

std::string Query_Doubt(const Study_Query&) {
    return {};
}

Retrieve_Result Series_Retrieve(const Archive_Settings&, const Series&, const std::filesystem::path&,
                                const Load_Progress&, const Retrieve_Limits&) {
    return Absent_As<Retrieve_Result>();
}

Send_Result Files_Send(const Archive_Settings&, std::span<const std::filesystem::path>, const Load_Progress&,
                       const Send_Wishes&) {
    return Absent_As<Send_Result>();
}

}  // namespace workbench::archive
