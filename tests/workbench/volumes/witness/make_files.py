#!/usr/bin/env python3
"""Writes image files and what independent programs read in them: make_files.py FOLDER (see witness.py)"""
import importlib.util
import os
import shutil
import sys

sys.dont_write_bytecode = True

import nifti_files
from witness import Witness

LEAST_FILES = 500
CASES_OF_A_KIND = 10


def make_dicom(witness):
    import dicom_case
    import dicom_frames
    import dicom_series
    import dicom_single

    for part in (dicom_single, dicom_series, dicom_frames):
        for kind in part.KINDS:
            for number in range(CASES_OF_A_KIND):
                case = dicom_case.Case(witness, part.__name__.removeprefix("dicom_") + "_" + kind.__name__, number)
                kind(case)
                case.finish()


def main(folder):
    shutil.rmtree(folder, ignore_errors=True)
    witness = Witness(folder)
    nifti_files.make(witness)
    if importlib.util.find_spec("pydicom"):
        make_dicom(witness)
    witness.close()
    print("%d items in %d files" % (witness.item_nb, witness.file_nb))
    return 0 if witness.file_nb >= LEAST_FILES else 1


if __name__ == "__main__":
    sys.exit(main(os.path.abspath(sys.argv[1])))
