"""Makes the schema of whole requests, with the `messages` of each command, out of the description."""

from __future__ import annotations

from api.description import Description, Json
from api.standard import standard


def _messages(command: Json) -> Json:
    """The schema of a command's messages; a reference to a file becomes one from the folder `schemas/`."""
    schema: Json = command["messages"]["schema"]
    plain: Json = {"$ref": schema["$ref"].rsplit("/", 1)[1]} if "$ref" in schema else standard(schema)
    return plain


def _condition(command: Json) -> Json:
    properties: Json = {"command": {"const": command["word"]}, "name": True}
    if command["target"] == "batch":
        properties["name"] = {"const": "json"}
    elif command["target"] == "variable":
        properties["name"] = {"not": {"const": "json"}}
    return {"properties": properties, "required": ["command"] if properties["name"] is True else ["command", "name"]}


def _rule(command: Json) -> Json:
    messages: Json = {"$ref": f"#/$defs/{command['id']}"}
    rule: Json = {"properties": {"messages": messages}}
    if command["messages"]["form"] == "object":
        rule["properties"]["messages"] = {
            "anyOf": [messages, {"type": "string", "contentMediaType": "application/json"}]}
        rule["required"] = ["messages"]
    return {"if": _condition(command), "then": rule}


def envelope_schema(description: Description) -> Json:
    texts = description.interface["envelope"]
    with_messages = [command for command in description.commands if "schema" in command["messages"]]
    words = list(dict.fromkeys(command["word"] for command in description.commands))
    return {
        "$schema": "https://json-schema.org/draft/2020-12/schema",
        "$id": "https://vornserver.example/api/schemas/envelope.schema.json",
        "title": "Request",
        "description": "The body of a POST to /api. Made from the files of commands/; do not edit.",
        "type": "object",
        "additionalProperties": False,
        "required": ["command", "name"],
        "properties": {
            "command": {"enum": words, "description": texts["command"]},
            "name": {"type": "string", "description": texts["name"]},
            "messages": {"description": texts["messages"]},
        },
        "allOf": [_rule(command) for command in with_messages],
        "$defs": {command["id"]: _messages(command) for command in with_messages},
    }
