"""An archive in the network: the distribution's Orthanc, started on a port of the scenario's own."""
import contextlib
import json
import os
import shutil
import socket
import subprocess
import time

from driver.scenario import Skipped, scenario
from scenarios.dicom import ct_series, pydicom_library

TITLE = "ARCHIVE"
PATIENCE = 60  # seconds, on a busy machine


def free_port():
    with contextlib.closing(socket.socket()) as listening:
        listening.bind(("127.0.0.1", 0))
        return listening.getsockname()[1]


class Archive:
    def __init__(self, folder):
        program = shutil.which("Orthanc", path=os.environ.get("PATH", "") + ":/usr/sbin")
        if program is None or shutil.which("storescu") is None:
            raise Skipped("orthanc or dcmtk is not there")
        self.port = free_port()
        folder.mkdir()
        configuration = folder / "archive.json"
        configuration.write_text(json.dumps({
            "StorageDirectory": str(folder / "images"), "IndexDirectory": str(folder / "images"), "Plugins": [],
            "HttpServerEnabled": False, "DicomServerEnabled": True, "DicomAet": TITLE, "DicomCheckCalledAet": True,
            "DicomPort": self.port, "DicomAlwaysAllowEcho": True, "DicomAlwaysAllowStore": True,
            "DicomAlwaysAllowFind": True, "DicomAlwaysAllowGet": True, "RemoteAccessAllowed": False}))
        self.process = subprocess.Popen([program, configuration], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                        stderr=subprocess.DEVNULL, env={**os.environ, "TCP_NODELAY": "1"})
        end = time.monotonic() + PATIENCE
        while self.ask("echoscu").returncode != 0:
            if time.monotonic() > end:
                self.end()
                raise RuntimeError("orthanc is installed but does not start")
            time.sleep(0.2)

    def ask(self, program, *arguments):
        return subprocess.run([program, "-aec", TITLE, "127.0.0.1", str(self.port), *arguments],
                              stdin=subprocess.DEVNULL, capture_output=True, text=True, check=False)

    def fetch(self, folder, study):
        """Every object of a study, by another program."""
        folder.mkdir()
        self.ask("getscu", "-S", "-k", "QueryRetrieveLevel=STUDY", "-k", f"StudyInstanceUID={study}", "-od", str(folder))
        return sorted(folder.iterdir())

    def end(self):
        self.process.kill()
        self.process.wait()


@scenario()
def a_series_comes_from_an_archive_and_labels_go_back(run):
    """Searched, fetched and opened; labels are sent, and another program finds them in the archive, voxel by voxel."""
    pydicom = pydicom_library()
    folder = ct_series(run)
    files = sorted(folder.iterdir())
    wanted = pydicom.dcmread(files[0])
    archive = Archive(run.folder / "archive")
    try:
        run.same("the archive takes the series", archive.ask("storescu", *map(str, files)).returncode, 0)
        run.settings.write_text("workbench settings\n"
                                f"archive Test|127.0.0.1|{archive.port}|{TITLE}|WORKBENCH|5|5|30\n")
        app = run.start(run.image())
        app.menu("Open from an archive")
        run_search(run, app, str(wanted.PatientID))
        app.expect("the series is opened", slice_nb=len(files))
        run.check("what was fetched is told", bool(app.said(f"status {len(files)} images fetched from Test")))
        kept = list((run.folder / "from_archives").glob("*/*.dcm"))
        run.same("its files are named by identifiers",
                 sorted(path.name for path in kept),
                 sorted(f"{pydicom.dcmread(path).SOPInstanceUID}.dcm" for path in files))
        run.shot("archive_opened", " - Workbench")
        app.key("2")
        app.stroke((40, 45), (60, 45))
        painted = app.expect("work is unsaved", unsaved=1).count(2)
        app.menu("Send labels to an archive")
        app.answer_key("Send labels to an archive", "Return")
        app.window("Send labels")
        run.shot("archive_send", "Send labels")
        app.answer("Send labels", "Send")
        app.wait_said("status Labels sent to Test: 1 object accepted")
        back = [pydicom.dcmread(path) for path in archive.fetch(run.folder / "back", wanted.StudyInstanceUID)]
        objects = [one for one in back if one.Modality == "SEG"]
        run.same("the archive has one object of labels", len(objects), 1)
        data = objects[0]
        run.same("with the voxels", int(data.pixel_array.sum()), painted)
        run.same("of the patient", data.PatientID, wanted.PatientID)
        run.check("what was written for it is gone",
                  not list((run.folder / "from_archives").glob("0.fetching-*")))
        archive.end()
        app.menu("Open from an archive")
        app.answer_key("Open from an archive", "Return")
        app.answer_key("Search Test", "Return")
        app.window("Open from an archive")
        run.shot("archive_not_there", "Open from an archive")
        app.answer("Open from an archive", "Close")
        app.answer_key("Search Test", "Escape")
        app.expect("the image stays where the archive is gone", slice_nb=len(files))
        app.expect("the workbench keeps its contract with archives too", contract_reports=0)
    finally:
        archive.end()


def run_search(run, app, patient):
    app.window("Open from an archive")
    run.shot("archive_choose", "Open from an archive")
    app.answer_key("Open from an archive", "Return")
    app.window("Search Test")
    app.key("Tab")
    app.type(patient)
    run.shot("archive_search", "Search Test")
    app.key("Return")
    app.window("Studies found")
    run.shot("archive_studies", "Studies found")
    app.answer_key("Studies found", "Return")
    app.window("Series of the study")
    run.shot("archive_series", "Series of the study")
    app.key("Return")
