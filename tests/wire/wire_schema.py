"""Holds what travels to docs/openapi.yaml and docs/asyncapi.yaml.

Whatever does not fit is an offence, a sentence that begins with where it was found. The descriptions let a
server send more than they list; here a member that they do not list is an offence too, so that nothing can be
sent without being described.
"""

import json
import re
from dataclasses import dataclass, field
from pathlib import Path
from urllib.parse import parse_qsl

import jsonschema
import yaml

REST, FEED = "openapi.yaml", "asyncapi.yaml"
ERROR = "#/components/schemas/Error"


@dataclass
class Exchange:
    """A request and its answer. Names of headers are in lower case."""
    method: str
    target: str
    status: int
    sent: str = ""
    sent_headers: dict = field(default_factory=dict)
    body: str = ""
    headers: dict = field(default_factory=dict)

    def __str__(self):
        return f"{self.method} {self.target} {self.status}"


def parse(text):
    """Strict JSON; raises ValueError."""
    def constant(name):
        raise ValueError(f"{name} is no JSON")

    def members(pairs):
        if len({name for name, _ in pairs}) < len(pairs):
            raise ValueError("a member comes twice")
        return dict(pairs)
    return json.loads(text, parse_constant=constant, object_pairs_hook=members)


class WireDescription:
    """The two documents, and which parts of them were met so far."""

    def __init__(self, folder):
        self._files = {name: yaml.safe_load((Path(folder) / name).read_text(encoding="utf-8")) for name in (REST, FEED)}
        self._resolved = {}
        self._members = {}  # id of a "properties" -> (where it stands, itself)
        self._paths = self._expand(self._files[REST]["paths"], REST, "paths")
        self._security = self._files[REST]["security"]
        self._schemes = self._files[REST]["components"]["securitySchemes"]
        self._error = self._reference(REST, ERROR)
        operations = self._expand(self._files[FEED]["operations"], FEED, "operations")
        self._messages = {
            action: {message["payload"]["properties"]["type"]["const"]: message["payload"]
                     for operation in operations.values() if operation["action"] == action
                     for message in operation["messages"]}
            for action in ("send", "receive")}
        channels = [operation["channel"] for operation in operations.values()]
        self._handshakes = {channel["address"]: channel["bindings"]["ws"]["query"] for channel in channels}
        self._met = set()
        self._met_members = set()
        self._validator = jsonschema.validators.extend(
            jsonschema.Draft202012Validator,
            {"properties": self._note_members, "additionalProperties": self._judge_others})
        self._noted = set()

    # --- reading the documents -------------------------------------------------------------------

    def _reference(self, file, reference):
        name, pointer = reference.split("#")
        name = name or file
        if (name, pointer) not in self._resolved:
            node = self._files[name]
            for part in pointer.strip("/").split("/"):
                node = node[part.replace("~1", "/").replace("~0", "~")]
            self._resolved[name, pointer] = self._expand(node, name, pointer.strip("/"))
        return self._resolved[name, pointer]

    def _expand(self, node, file, where):
        """The node with what it refers to in place; objects are closed to members that are not listed."""
        if isinstance(node, list):
            return [self._expand(item, file, f"{where}/{i}") for i, item in enumerate(node)]
        if not isinstance(node, dict):
            return node
        if isinstance(node.get("$ref"), str):
            beside = {name: value for name, value in node.items() if name != "$ref"}
            return {**self._reference(file, node["$ref"]), **beside}
        expanded = {name: self._expand(value, file, f"{where}/{name}") for name, value in node.items()}
        if node.get("type") == "object" and "properties" in node:
            expanded.setdefault("additionalProperties", False)
            self._members[id(expanded["properties"])] = (f"{file} {where}/properties", expanded["properties"])
        return expanded

    # --- judging ---------------------------------------------------------------------------------

    def _note_members(self, validator, properties, instance, schema):
        if isinstance(instance, dict):
            self._noted |= {(id(properties), name) for name in properties if name in instance}
        yield from jsonschema.Draft202012Validator.VALIDATORS["properties"](validator, properties, instance, schema)

    @staticmethod
    def _judge_others(validator, others, instance, schema):
        """Each value once: the platform's checks send price maps in which a thousand are alike."""
        if not isinstance(instance, dict) or not isinstance(others, dict) or "patternProperties" in schema:
            yield from jsonschema.Draft202012Validator.VALIDATORS["additionalProperties"](
                validator, others, instance, schema)
            return
        values = {json.dumps(value): (name, value) for name, value in instance.items()
                  if name not in schema.get("properties", {})}
        for name, value in values.values():
            yield from validator.descend(value, others, path=name)

    def _judge(self, text, schema):
        try:
            value = parse(text)
        except ValueError as error:
            return [f"$: no JSON: {error}"]
        return self._judge_value(value, schema)

    def _judge_value(self, value, schema):
        self._noted = set()
        offences = []
        for error in self._validator(schema).iter_errors(value):
            reasons = [f"{part.json_path}: {part.message}" for part in error.context]
            offences.append(f"{error.json_path}: {error.message}" + (f" ({'; '.join(reasons)})" if reasons else ""))
        if not offences:
            self._met_members |= self._noted
        return offences

    def _template(self, path):
        """The described path that this one is, those without a placeholder first."""
        for template in sorted(self._paths, key=lambda item: item.count("{")):
            pattern = "[^/]+".join(re.escape(part) for part in re.split(r"\{\w+\}", template))
            if re.fullmatch(pattern, path):
                return template
        return None

    def exchange(self, exchange, asked=True):
        """The offences of an answer, and of its request where what was asked is judged too."""
        path, _, query = exchange.target.partition("?")
        template = self._template(path)
        if template is None:
            return self._named(exchange, self._elsewhere(exchange, 404))
        item = self._paths[template]
        operation = item.get(exchange.method.lower())
        if operation is None:
            offences = self._elsewhere(exchange, 405)
            allowed = {name.strip() for name in exchange.headers.get("allow", "").split(",")}
            described = {name.upper() for name in item if name != "parameters"}
            if allowed != described:
                offences.append(f"allow: {sorted(allowed)} is not {sorted(described)}")
            return self._named(exchange, offences)
        response = operation["responses"].get(str(exchange.status))
        if response is None:
            return self._named(exchange, ["status: it is not described"])
        offences = self._judge_reply(exchange, response.get("content"))
        if asked and exchange.status < 400:
            offences += self._judge_request(exchange, item, operation, query)
        if asked and exchange.status == 101:
            offences += self._judge_value(dict(parse_qsl(query)), self._handshakes[template])
        if not offences:
            self._met.add((exchange.method, template, exchange.status))
        return self._named(exchange, offences)

    def refusal(self, exchange):
        """The offences of the answer to what is no HTTP."""
        if not 400 <= exchange.status < 500:
            return [f"{exchange}: what is no HTTP was answered"]
        return self._named(exchange, self._judge_reply(exchange, {"application/json": {"schema": self._error}}))

    @staticmethod
    def _named(exchange, offences):
        return [f"{exchange}: {offence}" for offence in offences]

    def _elsewhere(self, exchange, status):
        if exchange.status != status:
            return [f"status: what is not described is to be answered with {status}"]
        return self._judge_reply(exchange, {"application/json": {"schema": self._error}})

    def _judge_reply(self, exchange, content):
        if not content:
            return []
        kind = exchange.headers.get("content-type", "").partition(";")[0].strip()
        if kind not in content:
            return [f"content-type: \"{kind}\" is not described"]
        return [f"reply {offence}" for offence in self._judge(exchange.body, content[kind]["schema"])]

    def _judge_request(self, exchange, item, operation, query):
        offences = self._judge_query(item.get("parameters", []) + operation.get("parameters", []), operation, query)
        names = [name for need in operation.get("security", self._security) for name in need]
        if any(self._schemes[name].get("scheme") == "bearer" for name in names) \
                and not exchange.sent_headers.get("authorization", "").startswith("Bearer "):
            offences.append("authorization: it is missing, yet the request was answered")
        content = operation.get("requestBody", {}).get("content")
        if content:
            schema = content["application/json"]["schema"]
            offences += [f"request {offence}" for offence in self._judge(exchange.sent, schema)]
        elif exchange.sent:
            offences.append("request: a body is not described")
        return offences

    def _judge_query(self, parameters, operation, query):
        described = {item["name"]: item for item in parameters if item["in"] == "query"}
        for need in operation.get("security", []):
            for name in need:
                scheme = self._schemes[name]
                if scheme.get("in") == "query":
                    described[scheme["name"]] = {"required": True, "schema": {"type": "string", "minLength": 1}}
        offences, given = [], dict(parse_qsl(query, keep_blank_values=True))
        for name, item in described.items():
            if name not in given:
                if item.get("required"):
                    offences.append(f"query {name}: it is missing")
                continue
            value = given[name]
            if item["schema"].get("type") == "integer" and re.fullmatch(r"-?\d+", value):
                value = int(value)
            offences += [f"query {name} {offence}" for offence in self._judge_value(value, item["schema"])]
        return offences + [f"query {name}: it is not described" for name in given if name not in described]

    def message(self, action, text):
        """The offences of a message that the platform is to "send" or to "receive"."""
        try:
            value = parse(text)
        except ValueError as error:
            return [f"feed: no JSON: {error}"]
        kind = value.get("type") if isinstance(value, dict) else None
        schema = self._messages[action].get(kind) if isinstance(kind, str) else None
        if schema is None:
            return [f"feed: $.type: {kind!r} is not described"]
        offences = self._judge_value(value, schema)
        if not offences:
            self._met.add((action, kind))
        return [f"feed {kind}: {offence}" for offence in offences]

    # --- what is left ----------------------------------------------------------------------------

    def unmet(self, but_statuses=()):
        """What is described and was not met: statuses of operations, messages, members of records."""
        wanted = {(method.upper(), template, int(status))
                  for template, item in self._paths.items() for method, operation in item.items()
                  if method != "parameters" for status in operation["responses"]
                  if int(status) not in but_statuses}
        wanted |= {(action, kind) for action, kinds in self._messages.items() for kind in kinds}
        missing = [" ".join(map(str, entry)) for entry in wanted - self._met]
        missing += [f"{where}: {name}" for where, properties in self._members.values() for name in properties
                    if (id(properties), name) not in self._met_members]
        return sorted(missing)
