"""An archive in the network: the distribution's Orthanc, started on a port of the scenario's own."""
import contextlib
import datetime
import hmac
import json
import os
import random
import shutil
import signal
import socket
import subprocess
import time

from driver.scenario import Skipped, scenario
from driver.workbench import windows_path
from scenarios.dicom import ct_series, pydicom_library

TITLE = "ARCHIVE"
PATIENCE = 60  # seconds, on a busy machine


def free_port():
    """Not one that the system chooses: it gives those to every connection that begins meanwhile, too."""
    for port in random.sample(range(20000, 32000), 100):
        with contextlib.closing(socket.socket()) as listening, contextlib.suppress(OSError):
            listening.bind(("", port))
            return port
    raise OSError("no port is free")


class Archive:
    def __init__(self, folder, certificate=None):
        """@param certificate names CERTIFICATE.pem and CERTIFICATE.key: it is spoken to by TLS"""
        program = shutil.which("Orthanc", path=os.environ.get("PATH", "") + ":/usr/sbin")
        if program is None or shutil.which("storescu") is None:
            raise Skipped("orthanc or dcmtk is not there")
        self.port = free_port()
        self.encrypted = ["--anonymous-tls", "--ignore-peer-cert"] if certificate else []
        folder.mkdir()
        secret = {"DicomTlsEnabled": True, "DicomTlsCertificate": f"{certificate}.pem",
                  "DicomTlsPrivateKey": f"{certificate}.key", "DicomTlsTrustedCertificates": f"{certificate}.pem",
                  "DicomTlsRemoteCertificateRequired": False} if certificate else {}
        configuration = folder / "archive.json"
        configuration.write_text(json.dumps({
            "StorageDirectory": str(folder / "images"), "IndexDirectory": str(folder / "images"), "Plugins": [],
            "HttpServerEnabled": False, "DicomServerEnabled": True, "DicomAet": TITLE, "DicomCheckCalledAet": True,
            "DicomPort": self.port, "DicomAlwaysAllowEcho": True, "DicomAlwaysAllowStore": True,
            "DicomAlwaysAllowFind": True, "DicomAlwaysAllowGet": True, "RemoteAccessAllowed": False, **secret}))
        self.process = subprocess.Popen([program, configuration], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                        stderr=subprocess.DEVNULL, env={**os.environ, "TCP_NODELAY": "1"})
        end = time.monotonic() + PATIENCE
        while self.ask("echoscu").returncode != 0:
            if time.monotonic() > end:
                self.end()
                raise RuntimeError("orthanc is installed but does not start")
            time.sleep(0.2)

    def ask(self, program, *arguments):
        return subprocess.run([program, *self.encrypted, "-aec", TITLE, "127.0.0.1", str(self.port), *arguments],
                              stdin=subprocess.DEVNULL, capture_output=True, text=True, check=False)

    def fetch(self, folder, study):
        """Every object of a study, by another program."""
        folder.mkdir()
        self.ask("getscu", "-S", "-k", "QueryRetrieveLevel=STUDY", "-k", f"StudyInstanceUID={study}", "-od", str(folder))
        return sorted(folder.iterdir())

    def stop(self):
        """It answers no more; its connections stay."""
        self.process.send_signal(signal.SIGSTOP)

    def go_on(self):
        self.process.send_signal(signal.SIGCONT)

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
        app.answer("Send labels", "Send with names")
        app.wait_said("status Labels sent to Test with names: 1 object accepted")
        back = [pydicom.dcmread(path) for path in archive.fetch(run.folder / "back", wanted.StudyInstanceUID)]
        objects = [one for one in back if one.Modality == "SEG"]
        run.same("the archive has one object of labels", len(objects), 1)
        data = objects[0]
        run.same("with the voxels", int(data.pixel_array.sum()), painted)
        run.same("of the patient", data.PatientID, wanted.PatientID)
        run.check("what was written for it is gone",
                  not list((run.folder / "from_archives").glob("0.fetching-*")))
        images_go_anonymously(run, app, archive, files)
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


@scenario()
def an_archive_that_stands_still_is_told_and_given_up(run):
    """The window answers meanwhile, a sentence says what is, Escape ends the wait at once; later the archive is asked again."""
    folder = ct_series(run)
    archive = Archive(run.folder / "archive")
    try:
        run.same("the archive takes the series",
                 archive.ask("storescu", *map(str, sorted(folder.iterdir()))).returncode, 0)
        run.settings.write_text("workbench settings\n"
                                f"archive Test|127.0.0.1|{archive.port}|{TITLE}|WORKBENCH|5|5|30\n")
        app = run.start(run.image())
        archive.stop()
        app.menu("Open from an archive")
        app.answer_key("Open from an archive", "Return")
        begin = time.monotonic()
        app.answer_key("Search Test", "Return")
        app.window("Please wait")
        asked = time.monotonic()
        state = app.state()
        run.check("the window answers meanwhile", state is not None and time.monotonic() - asked < 3)
        app.window("Open from an archive")
        run.check("it was waited for, and not for long", 4 < time.monotonic() - begin < 30)
        run.shot("archive_stopped", "Open from an archive")
        app.answer("Open from an archive", "Close")
        app.answer_key("Search Test", "Return")
        app.window("Please wait")
        begin = time.monotonic()
        app.key("Escape")
        app.window("Search Test")
        run.check("Escape ends it at once", time.monotonic() - begin < 3)
        archive.go_on()
        app.answer_key("Search Test", "Return")
        app.window("Studies found")
        app.answer_key("Studies found", "Escape")
        app.answer_key("Search Test", "Escape")
        app.expect("the workbench keeps its contract meanwhile", contract_reports=0)
    finally:
        archive.end()


class Stand_In:
    """What stands for a patient in anonymous images, worked out a second time."""

    def __init__(self, settings, patient):
        line = next(line for line in settings.read_text().splitlines() if line.startswith("archive_secret "))
        self.secret = line.split()[1].encode()
        self.patient = "ANON" + self.hash(f"patient {patient}")[:5].hex().upper()
        self.days = 1 + int.from_bytes(self.hash(f"days {patient}")[:7], "big") % 3650

    def hash(self, text):
        return hmac.new(self.secret, text.encode(), "sha256").digest()

    def identifier(self, identifier):
        number = int.from_bytes(self.hash(f"identifier {identifier}")[:16], "big")
        number = number & ~(0xF << 76) | 8 << 76
        number = number & ~(3 << 62) | 2 << 62
        return f"2.25.{number}"

    def day(self, day):
        return (datetime.datetime.strptime(day, "%Y%m%d") - datetime.timedelta(self.days)).strftime("%Y%m%d")


def certificate(path, place):
    """One that signed itself."""
    subprocess.run(["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj", "/CN=archive",
                    "-addext", f"subjectAltName={place}", "-keyout", f"{path}.key", "-out", f"{path}.pem"],
                   check=True, capture_output=True)
    return path


@scenario()
def an_archive_is_spoken_to_by_tls_or_not_at_all(run):
    """One whose certificate is not trusted is told and learns nothing; a build without encryption says so."""
    if shutil.which("openssl") is None:
        raise Skipped("openssl is not there")
    pydicom = pydicom_library()
    folder = ct_series(run)
    files = sorted(folder.iterdir())
    trusted = certificate(run.folder / "trusted", "IP:127.0.0.1")
    stranger = certificate(run.folder / "stranger", "IP:127.0.0.1")
    archive = Archive(run.folder / "archive", trusted)
    try:
        run.same("the archive takes the series", archive.ask("storescu", *map(str, files)).returncode, 0)
        line = f"127.0.0.1|{archive.port}|{TITLE}|WORKBENCH|5|5|30|tls="
        run.settings.write_text(f"workbench settings\narchive Other|{line}{windows_path(stranger)}.pem\n"
                                f"archive Test|{line}{windows_path(trusted)}.pem\n")
        app = run.start(run.image())
        app.menu("Open from an archive")
        app.answer_key("Open from an archive", "Return")
        app.answer_key("Search Other", "Return")
        told = str(app.window("Open from an archive"))
        run.shot("archive_not_trusted", "Open from an archive")
        app.answer("Open from an archive", "Close")
        app.answer_key("Search Other", "Escape")
        if "this build cannot encrypt" in told:
            run.check("a build without encryption sends nothing", "Nothing was sent" in told)
            return
        run.check("a stranger's certificate is told", "not trusted" in told and "Nothing was sent" in told)
        app.menu("Open from an archive")
        app.window("Open from an archive")
        app.key("Down")
        run_search(run, app, str(pydicom.dcmread(files[0]).PatientID))
        app.expect("the series is opened", slice_nb=len(files))
    finally:
        archive.end()


def images_go_anonymously(run, app, archive, files):
    """Element by element, as another program reads what the archive has then."""
    pydicom = pydicom_library()
    app.menu("Send images to an archive")
    app.answer_key("Send images to an archive", "Return")
    app.window("Send images")
    run.shot("archive_send_images", "Send images")
    app.answer("Send images", "Send anonymously")
    app.wait_said(f"status Images sent to Test anonymously: {len(files)} objects accepted")
    before = {str(one.SOPInstanceUID): one for one in map(pydicom.dcmread, files)}
    any_before = next(iter(before.values()))
    stand_in = Stand_In(run.settings, any_before.PatientID)
    back = [pydicom.dcmread(path) for path in
            archive.fetch(run.folder / "anonymous", stand_in.identifier(any_before.StudyInstanceUID))]
    run.same("all images are there", sorted(str(one.SOPInstanceUID) for one in back),
             sorted(map(stand_in.identifier, before)))
    of = {stand_in.identifier(name): one for name, one in before.items()}
    for one in back:
        old = of[str(one.SOPInstanceUID)]
        left = [element.keyword or str(element.tag) for element in one.iterall()
                if element.tag.is_private or element.VR in ("LT", "ST", "UT", "AE", "AS")]
        run.same("nothing private and no free text", left, [])
        run.same("the patient", (str(one.PatientName), one.PatientID), (stand_in.patient, stand_in.patient))
        run.same("no birthday, no sex", (one.get("PatientBirthDate"), one.get("PatientSex")),
                 ("" if "PatientBirthDate" in old else None, "" if "PatientSex" in old else None))
        for element in old:
            if element.tag.is_private:
                continue
            if element.VR == "UI" and not str(element.value).startswith("1.2.840.10008."):
                run.same(element.keyword, str(one[element.tag].value), stand_in.identifier(str(element.value)))
            if element.VR == "DA" and element.value and element.keyword != "PatientBirthDate":
                run.same(element.keyword, one[element.tag].value, stand_in.day(element.value))
        run.same("marked", (one.PatientIdentityRemoved, [item.CodeValue for item in one.DeidentificationMethodCodeSequence]),
                 ("YES", ["113100", "113107"]))
        run.check("the same pixels", one.PixelData == old.PixelData)


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
