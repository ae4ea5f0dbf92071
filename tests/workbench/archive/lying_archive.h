/** Archives that do wrong, on the loopback address. */
#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "dcmtk/config/osconfig.h"
#include "dcmtk/dcmnet/assoc.h"
#include "dcmtk/dcmnet/dimse.h"
#include "workbench/archive/archive_settings.h"

/** Runs `script` on every connection in which something comes in. */
class Raw_Peer {
  public:
    /** @param its_script gets the socket; may read, write and close as it likes */
    explicit Raw_Peer(std::function<void(int)> its_script);
    ~Raw_Peer();
    Raw_Peer(const Raw_Peer&) = delete;
    Raw_Peer& operator=(const Raw_Peer&) = delete;

    workbench::archive::Archive_Settings Settings() const;

  private:
    void Run();

    std::function<void(int)> script;
    int listening = -1;
    int port = 0;
    std::atomic<bool> is_ended = false;
    std::thread thread;
};

/** What stands in an image; its identifier is the one that it is sent by where none is given. */
struct Stored_Image {
    std::string study = "1.2";
    std::string series = "1.2.3";
    std::string identifier;
    std::string patient = "Doe";
};

/** Agrees to everything, takes one request with its keys, and then follows its script. */
class Lying_Archive {
  public:
    struct Talk {
        T_ASC_Association* association;
        T_ASC_PresentationContextID context;
        T_DIMSE_Message request;
        /** Answers a C-FIND or C-GET. @param content may be null */
        void Answer(int status, DcmDataset* content = nullptr, int completed = -1, int failed = -1);
        /** Answers a C-FIND or C-GET: there is more to come, with bytes as they are for a data set. */
        void Answer_Raw(std::vector<unsigned char> bytes);
        /** Sends an image by its class and identifier. @return the other side's status, -1: none */
        int Store(const std::string& identifier, const Stored_Image& image = {});
    };

    explicit Lying_Archive(std::function<void(Talk&)> its_script);
    ~Lying_Archive();
    Lying_Archive(const Lying_Archive&) = delete;
    Lying_Archive& operator=(const Lying_Archive&) = delete;

    workbench::archive::Archive_Settings Settings() const;

  private:
    void Run();
    void Serve(T_ASC_Association* association);

    std::function<void(Talk&)> script;
    T_ASC_Network* network = nullptr;
    int port = 0;
    std::atomic<bool> is_ended = false;
    std::thread thread;
};
