"""Makes the OpenAPI 3.1 document out of the description: every command as an operation over the one path."""

from __future__ import annotations

import json
from typing import Any

from api.description import API, REPOSITORY, Description, Json, schema_of
from api.standard import standard

DIALECT = "https://json-schema.org/draft/2020-12/schema"
SUFFIX = ".schema.json"


def _reference(name: str) -> Json:
    return {"$ref": f"#/components/schemas/{name}"}


def _component_name(file: str) -> str:
    """The component that stands for a file of `schemas/`: project_document.schema.json is ProjectDocument."""
    return "".join(part.capitalize() for part in file.rsplit("/", 1)[1].removesuffix(SUFFIX).split("_"))


def _moved(value: Any, component: str) -> Any:
    """A schema as a component: its references to its own `$defs` lead there from the document's root."""
    if isinstance(value, list):
        return [_moved(entry, component) for entry in value]
    if not isinstance(value, dict):
        return value
    moved = {key: _moved(entry, component) for key, entry in value.items() if key not in ("$schema", "$id", "$defs")}
    if isinstance(value.get("$ref"), str):
        target = value["$ref"].rsplit("/", 1)[1]
        moved["$ref"] = f"#/components/schemas/{component}.{target}"
    return moved


def _files() -> dict[str, Json]:
    """The files of `schemas/` as components, each definition in them as one of its own."""
    components: dict[str, Json] = {}
    for path in sorted((API / "schemas").glob("*" + SUFFIX)):
        if path.name == "envelope" + SUFFIX:
            continue
        schema = standard(json.loads(path.read_text(encoding="utf-8")))
        name = _component_name(str(path))
        components[name] = _moved(schema, name)
        for key, definition in schema.get("$defs", {}).items():
            components[f"{name}.{key}"] = _moved(definition, name)
    return components


def _messages(command: Json) -> Json:
    messages: Json = command["messages"]
    if "schema" not in messages:
        return {"description": "The service does not look at it."}
    schema: Json = messages["schema"]
    whole: Json = _reference(_component_name(schema["$ref"])) if "$ref" in schema else standard(schema)
    if messages["form"] != "object":
        return whole
    return {"anyOf": [whole, {"type": "string", "contentMediaType": "application/json",
                              "description": "A text that contains the same JSON."}]}


def _name(description: Description, command: Json) -> Json:
    target: Json = description.interface["targets"][command["target"]]
    text: Json = {"type": "string", "description": target["text"]}
    if command["target"] == "batch":
        return {**text, "const": "json"}
    return {**text, "not": {"const": "json"}} if command["target"] == "variable" else text


def request_schema(description: Description, command: Json) -> Json:
    """The schema of a command's whole request."""
    schema = schema_of(command) or {}
    required = ["command", "name"]
    if "schema" in command["messages"] and "default" not in schema:
        required.append("messages")
    return {
        "title": command["title"], "description": command["text"], "type": "object", "required": required,
        "additionalProperties": False,
        "properties": {"command": {"type": "string", "const": command["word"]},
                       "name": _name(description, command), "messages": _messages(command)}}


def _reply_schema(description: Description, command: Json) -> Json:
    """What the command answers: its replies or failures as texts, or the JSON of its result."""
    failures = [description.failures[name] for name in description.failures_of(command)]
    lines = [f"{entry['text'].strip()}: {entry['meaning']}" for entry in [*command["replies"], *failures]]
    text: Json = {"type": "string", "description": "\n".join(lines)}
    if command["result"] != "json":
        return {"title": f"Reply to {command['id']}", **text}
    return {"title": f"Reply to {command['id']}",
            "anyOf": [_reference(_component_name(command["schema"]["$ref"])), text]}


def _file_content(value: Any) -> Any:
    if isinstance(value, dict):
        if "$file" in value:
            return json.loads((REPOSITORY / value["$file"]).read_text(encoding="utf-8"))
        return {key: _file_content(member) for key, member in value.items()}
    return value


def _examples(description: Description) -> Json:
    return {f"{command['id']} {number}": {"summary": example["title"], "value": _file_content(example["request"])}
            for command in description.commands for number, example in enumerate(command["examples"], 1)}


def _request(description: Description) -> Json:
    """Any request. Of a word that two commands share, the name tells which of them it is."""
    by_word: dict[str, list[str]] = {}
    for command in description.commands:
        by_word.setdefault(command["word"], []).append(f"{command['id']}Request")
    return {"description": "One of the commands; `command` says which.",
            "oneOf": [_reference(name) for names in by_word.values() for name in names],
            "discriminator": {"propertyName": "command", "mapping": {
                word: _reference(names[0])["$ref"] for word, names in by_word.items() if len(names) == 1}}}


def _command_path(description: Description) -> Json:
    content = {"schema": _reference("Request"), "examples": _examples(description)}
    return {"post": {
        "operationId": "command", "summary": "Send a command",
        "description": "Every command is a request of this one operation; `command` says which it is. "
                       + description.interface["matching"],
        "requestBody": {"required": True, "content": {"application/json": content}},
        "responses": {"200": {
            "description": "The reply, of success and of failure alike. The body is the text itself, without quotes, "
                           "or a JSON text.",
            "content": {"application/json": {"schema": _reference("Reply")}}}}}}


def _greeting_path(description: Description) -> Json:
    greeting = {"type": "string", "const": description.interface["ways"]["http"]["greeting"]}
    return {"get": {"operationId": "greeting", "summary": "Ask whether the service is there",
                    "responses": {"200": {"description": "It is.", "content": {"text/plain": {"schema": greeting}}}}}}


def openapi_document(description: Description) -> Json:
    """The whole document."""
    http = description.interface["ways"]["http"]
    components = _files()
    for command in description.commands:
        components[f"{command['id']}Request"] = request_schema(description, command)
        components[f"{command['id']}Reply"] = _reply_schema(description, command)
    components["Request"] = _request(description)
    components["Reply"] = {"anyOf": [_reference(f"{command['id']}Reply") for command in description.commands]}
    interface = description.interface
    return {
        "openapi": "3.1.0",
        "info": {"title": interface["title"], "version": interface["version"],
                 "description": interface["text"] + " Made from api/ by api/generate.py; do not edit."},
        "jsonSchemaDialect": DIALECT,
        "servers": [
            {"url": "http://{host}:{port}", "description": "The service itself", "variables": {
                "host": {"default": "127.0.0.1"}, "port": {"default": str(http["firstPort"])}}},
            {"url": "https://{place}", "description": "A proxy before it, which asks for a name and a password",
             "variables": {"place": {"default": "plant.example:8443"}}}],
        "security": [{}, {"password": []}, {"token": []}],
        "paths": {http["greetingPath"]: _greeting_path(description), http["path"]: _command_path(description)},
        "components": {"schemas": components, "securitySchemes": {
            "password": {"type": "http", "scheme": "basic"}, "token": {"type": "http", "scheme": "bearer"}}}}
