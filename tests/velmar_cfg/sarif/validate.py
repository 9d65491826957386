"""Checks JSON documents against a JSON schema: validate.py SCHEMA DOCUMENT...; prints what is wrong, exit code 1 then."""

import json
import sys

import jsonschema


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        validator = jsonschema.Draft4Validator(json.load(file))
    wrong = 0
    for path in sys.argv[2:]:
        with open(path, encoding="utf-8") as file:
            for error in validator.iter_errors(json.load(file)):
                print(path, "/".join(map(str, error.absolute_path)), error.message[:200])
                wrong += 1
    return 1 if wrong else 0


sys.exit(main())
