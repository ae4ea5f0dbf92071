/** An archive that a test starts and ends: the distribution's Orthanc, on a port of its own. */
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/workbench/volumes/dicom_bytes.h"
#include "workbench/archive/archive_client.h"

/** A port at which nothing listens. */
int Free_Port();

/** Files that a server encrypts with; empty: it does not. */
struct Server_Encryption {
    std::string certificate;
    std::string key;
    std::string trusted;                          ///< that callers' certificates are signed with
    bool is_caller_checked = false;               ///< callers need a certificate
    workbench::archive::Archive_Settings caller;  ///< what the test knows it by: files only
};

class Archive_Server {
  public:
    static constexpr const char* TITLE = "ARCHIVE";
    static bool Is_Installed();

    /** Started, and ready; ends with the test whatever becomes of it. */
    Archive_Server() : Archive_Server(Server_Encryption{}) {}
    explicit Archive_Server(Server_Encryption server_encryption);
    /** Killed at once: what it stored goes, too. */
    ~Archive_Server();
    Archive_Server(const Archive_Server&) = delete;
    Archive_Server& operator=(const Archive_Server&) = delete;

    bool Is_Ready() const { return is_ready; }
    /** How it is spoken to, with little patience. */
    workbench::archive::Archive_Settings Settings() const;
    void Freeze() const;
    void Go_On() const;
    void Kill();

  private:
    void Start();

    Temporary_Folder folder;
    Server_Encryption encryption;
    int port = 0;
    int called_port = 0;  ///< where it knows the program to be
    pid_t process = 0;
    bool is_ready = false;
};

/** What tells images apart. */
struct Image_Facts {
    std::string patient_name = "Doe^Jane";
    std::string patient_id = "P1";
    std::string date = "20240131";
    std::string study = "1.2.3.1";
    std::string study_text = "Head routine";
    std::string series = "1.2.3.1.1";
    std::string modality = "MR";
    int number = 1;
    std::string character_set = "ISO_IR 192";
    int side = 8;  ///< pixels
};

/** A file of an MR image whose pixels follow from its number. */
Bytes Image_File(const Image_Facts& facts);
/** Writes `count` images of a series. @return their paths */
std::vector<std::filesystem::path> Series_Write(const std::filesystem::path& folder, Image_Facts facts, int count);
