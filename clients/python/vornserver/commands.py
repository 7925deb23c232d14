"""The commands as methods. Made from the description in api/ by api/generate.py; do not edit."""

from __future__ import annotations

from typing import Any, Literal, Mapping

from vornserver.caller import Caller
from vornserver.values import Writable, number_text


class ServerCommands(Caller):
    """The commands that address no open project."""

    def put(self, project: str, verb: Literal["Run", "Pause", "Step", "Stop", "Remove", "Close"]) -> str:
        """Drive a project by its name.

        The verb Run starts an open project without waiting; a project that is not open it reads from the store,
        where it must have been published with success, and the engine starts it. Pause toggles the pause, Step asks
        for one step, Stop stops, Remove closes the project, and Close closes all projects, whatever the name.

        verb: What to do.
        """
        result: str = self.call("Put", project, verb)
        return result

    def holds_project(self, project: str) -> bool:
        """Ask whether the server holds a project.

        Tells whether a project of this name is open.
        """
        result: bool = self.call("Fdp", project, None)
        return result

    def runs_from(self, directory: str) -> bool:
        """Ask whether the server runs from a directory.

        The server's own directory is the parent of the one that holds the host program, with an underline for each
        separator: /opt/vorn/bin/vorn-host runs from _opt_vorn_. The text must equal it or begin with it.
        """
        result: bool = self.call("Fph", directory, None)
        return result


class ProjectCommands(Caller):
    """The commands that address a project."""

    def send(self, document: Mapping[str, Any]) -> None:
        """Replace the project by a document.

        The whole project is emptied, made anew from the document, and stored. A fitting from the catalogue is
        chosen for each connection by the sizes of its ports. The document is not judged: what it leaves out gets
        defaults, unknown types and ends are passed over without a word, and the reply is OK. Ask `NetAccess` behind
        it.
        """
        self.call("PjtSent", self.name, document)

    def clear(self) -> None:
        """Empty a project.

        Takes all modules, nodes and links away. The project stays open, and its stored content stays as it was. It
        is done also while the project runs.
        """
        self.call("PjtClear", self.name, None)

    def close(self) -> None:
        """Close a project.

        Stops the project if it runs and takes it out of the engine. What was not stored is gone: `PjtSent` stores,
        single commands do not.
        """
        self.call("PjtClose", self.name, None)

    def add_module(
            self, vorn_module_id: int, device_name: str, *, page_nb: int = 0, position_x: float = 0.0,
            position_z: float = 0.0, model_id: str = "", room_id: str = "") -> str:
        """Place a module.

        A module is a device of one of the catalogue's types. The engine chooses its number, the lowest that is
        free.

        vorn_module_id: The identity of the module's type in the catalogue, an integer of 64 bits.
        device_name: The name of the type, as a check of VornModuleID.
        page_nb: The page of the drawing.
        position_x: Where the module stands, from left to right. The grid has 50 steps to a unit, and what is
            between is cut towards zero. In drawing units.
        position_z: Where the module stands, in the other direction of the page. In drawing units.
        model_id: Only its type is looked at: a project document is the way to give a module a model.
        room_id: Only its type is looked at: a project document is the way to put a module into a room.
        """
        result: str = self.call("AddModule", self.name,
                {"VornModuleID": vorn_module_id, "PageNb": page_nb, "PositionX": float(position_x),
                "PositionZ": float(position_z), "ModelID": model_id, "RoomID": room_id, "DeviceName": device_name})
        return result

    def add_node(
            self, vorn_module_id: Literal[3000, 3001, 3002, 3003],
            node_name: Literal["FLUID", "INFO", "POWER", "MECH"], *, page_nb: int = 0, position_x: float = 0.0,
            position_z: float = 0.0) -> str:
        """Place a node.

        A node is a junction with eight inlets, ports 0 to 7, and eight outlets, ports 8 to 15.

        vorn_module_id: The node's kind: 3000 fluid, 3001 information, 3002 power, 3003 mechanics.
        node_name: The name of the kind, as a check of VornModuleID.
        page_nb: The page of the drawing.
        position_x: Where the node stands, from left to right. The grid has 50 steps to a unit, and what is between
            is cut towards zero. In drawing units.
        position_z: Where the node stands, in the other direction of the page. In drawing units.
        """
        result: str = self.call("AddNode", self.name,
                {"VornModuleID": vorn_module_id, "PageNb": page_nb, "PositionX": float(position_x),
                "PositionZ": float(position_z), "NodeName": node_name})
        return result

    def add_link(
            self, f_instance_id: str, s_instance_id: str, *, link_type: int = 0, page_nb: int = 0,
            f_port_nb: int = 0, s_port_nb: int = 0) -> list[str]:
        """Link two ports.

        A link leads from an outlet to an inlet. The port of a node is chosen by the service: the lowest free outlet
        of 8 to 15, or inlet of 0 to 7. Where neither end is a flagged port, a link of type 0 gets a pipe module in
        its middle and one of type 2 a wire module, so that there are two links; all other links are drawn directly.
        The ports of pipes, wires and of most devices that something flows through are flagged, those of nodes
        never.

        f_instance_id: The upstream element in the system's own form, such as MOD12 or NOD0.
        s_instance_id: The downstream element, likewise.
        link_type: What the link carries: 0 fluid, 1 information, 2 power, 3 mechanics. Only 0 and 2 get a module in
            the middle.
        page_nb: The page of the drawing.
        f_port_nb: The upstream port. Of a node it is chosen by the service, but must lie in 0 to 15 all the same.
        s_port_nb: The downstream port, likewise.
        """
        result: list[str] = self.call("AddLink", self.name,
                {"Type": link_type, "PageNb": page_nb, "F_InstanceID": f_instance_id, "F_PortNb": f_port_nb,
                "S_InstanceID": s_instance_id, "S_PortNb": s_port_nb})
        return result

    def move(self, element: str, *, position_x: float = 0.0, position_z: float = 0.0) -> None:
        """Move a module or node.

        Moves an element on its page. A coordinate that is left out becomes 0. A number at which no element is gets
        OK too, and nothing happens. Unlike the placements, this command takes no whole number: 3.0 is right and 3
        is not.

        position_x: The new position, from left to right. In drawing units.
        position_z: The new position, in the other direction of the page. In drawing units.
        """
        self.call("MoveMN", f"{self.name}_{element}", {"PositionX": float(position_x), "PositionZ": float(position_z)})

    def delete(self, element: str) -> None:
        """Delete a module, node or link.

        What becomes of the links of a deleted module or node is the engine's matter; the stand-in deletes them. A
        number at which no element is, such as MOD77 in a small project, gets OK too, and nothing happens: the reply
        does not say that there was one. The Python client looks first and reports that there was none.
        """
        self.call("DeleteMNL", f"{self.name}_{element}", None)

    def check(self) -> None:
        """Judge a project's networks.

        Traces all links into branches and maps the nodes into nets. The tests run in this order, and the first that
        fails is told: every branch is closed; every link, then every jump between pages, is part of a branch; every
        net has a device that holds its pressure.
        """
        self.call("NetAccess", self.name, None)

    def topology(self) -> Any:
        """Read a project's topology.

        Devices, nodes, connections and branches as one JSON text. It is made from the tables that the last analysis
        left, and uses them up: straight behind `NetAccess` of the same project it tells of that analysis, else it
        makes one of its own. It is given for incomplete networks too; a branch without an end has the end None at
        port -1. Ask NetAccess whether it is complete. After a `NetAccess` of another project that found branches,
        the next report tells of that other project.
        """
        result: Any = self.call("PjtInfoChk", self.name, None)
        return result

    def send_script(self, script: str) -> str:
        """Give a project its script.

        Stores the Lua script of the project and has the engine look at it, also while the project runs. The reply
        is the engine's own text. The stand-in compiles the script and never runs it.

        script: The script.
        """
        result: str = self.call("LuaSent", self.name, script)
        return result

    def run(self) -> None:
        """Start a project.

        Copies cache set 0 into the run values, starts the project, and waits two seconds for the engine to object.
        A project that runs already is left as it is. With the pause set beforehand it starts paused.
        """
        self.call("PjtRun", self.name, None)

    def pause(self) -> None:
        """Pause a project, or let it go on.

        A toggle: it sets the pause, and the next one takes it off. It does not look whether the project runs.
        """
        self.call("PjtPause", self.name, None)

    def step(self) -> None:
        """Ask for one step.

        Asks the engine for one step of the project. When it is made is the engine's matter; the stand-in makes it
        at once, also while the project is paused or stopped.
        """
        self.call("PjtStep", self.name, None)

    def stop(self) -> None:
        """Stop a project.

        Stops the run and takes the pause off, whatever the project was doing. The run values stay until the next
        start.
        """
        self.call("PjtStop", self.name, None)

    def load_cache(self, cache_set: Literal[0, 1, 2]) -> None:
        """Copy a cache set into the run values of the whole project.

        The run values of all modules and nodes become those of the set.

        cache_set: The cache set.
        """
        self.call("PjtCacheToRun", self.name, cache_set)

    def save_cache(self, cache_set: Literal[0, 1, 2]) -> None:
        """Copy the run values of the whole project into a cache set.

        The set's values of all modules and nodes become the run values, also while the project runs. Set 0 is the
        one that a run begins from.

        cache_set: The cache set.
        """
        self.call("PjtRunToCache", self.name, cache_set)

    def put(self, verb: Literal["Run", "Pause", "Step", "Stop", "Remove", "Close"]) -> str:
        """Drive a project by its name.

        The verb Run starts an open project without waiting; a project that is not open it reads from the store,
        where it must have been published with success, and the engine starts it. Pause toggles the pause, Step asks
        for one step, Stop stops, Remove closes the project, and Close closes all projects, whatever the name.

        verb: What to do.
        """
        result: str = self.call("Put", self.name, verb)
        return result

    def write(self, variable: str, value: Writable) -> None:
        """Write a variable.

        A text that is no number writes 0, and the reply is OK all the same: it says that the name is known. A whole
        number goes through a real one, 0.001 is added (in a list 0.01) and the rest cut, so that -3 writes -2. A
        list that names fewer than eight entries writes 0 into the others; what is over eight, and what is over 191
        bytes of an entry, is passed over.

        value: The value: a number, or up to eight numbers with commas between them. The service writes 0 for the
            empty text and for a text that is no number.
        """
        self.call("Set", self.full_name(variable), self.value_text(variable, value))

    def read(self, variable: str) -> float:
        """Read a variable.

        A real number has six decimals. A list has eight entries with commas between them, real ones with eight
        decimals, at most 9999999999999 and at least its negative, 0 where there is no finite number.
        """
        result: float = self.call("Get", self.full_name(variable), None)
        return result

    def add_variable(self, variable: str) -> None:
        """Add a variable to a project.

        Adds a real variable, which is 0 at first. Its name is the engine's matter; the stand-in takes 1 to 63
        letters, digits and underlines of ASCII, where upper and lower case differ, and no name that reads as a
        variable of an element.

        variable: The variable's name, without the project.
        """
        self.call("PjtAddVar", self.name, variable)

    def delete_variable(self, variable: str) -> None:
        """Delete a variable that was added.

        The variables that every project has stay.

        variable: The variable's name, without the project.
        """
        self.call("PjtDleVar", self.name, variable)

    def pressure(self, element: str) -> float:
        """Read the pressure at a module's port 0.

        The value of the variable IM0_PRE of the module, in the engine's unit: the stand-in's is kPa over ambient.
        """
        result: float = self.call("PreGet", f"{self.name}_{element}", None)
        return result

    def temperature(self, element: str) -> float:
        """Read the temperature at a module's port 0.

        The value of the variable IM0_TEMP of the module.
        """
        result: float = self.call("TempGet", f"{self.name}_{element}", None)
        return result

    def flow(self, element: str) -> float:
        """Read the flow at a module's port 0.

        The value of the variable IM0_FLOW of the module, in the engine's unit: the stand-in's is kg/s.
        """
        result: float = self.call("FlowGet", f"{self.name}_{element}", None)
        return result

    def room(self, element: str) -> Any:
        """Read the air of a room.

        Six values as one JSON object: texts for a module, the number 0.0 each for any other element. A module that
        is no room shows the failure of each variable.
        """
        result: Any = self.call("RoomGet", f"{self.name}_{element}", None)
        return result

    def element_variables(self, element: str) -> Any:
        """Read all variables of an element.

        The engine's text. The stand-in's is a JSON array: first the rows of the element's table, each with the name
        of its variable and its run value, then the variables of its ports. It is empty for an element without
        values.
        """
        result: Any = self.call("VarInfoGet", f"{self.name}_{element}", None)
        return result

    def set_run_value(self, element: str, value: float | str, *, row: int = 0) -> None:
        """Write a run value of an element.

        Writes one row of the table of items of a module or node. A row that the table does not have writes nothing.

        value: The number as text, at most 255 bytes. The service writes 0 for a text that is no number.
        row: The row of the table, from 0.
        """
        self.call("RunValueSet", f"{self.name}_{element}", {"Row": row, "Value": number_text(value)})

    def run_values(self, element: str) -> Any:
        """Read the run values of an element's table.

        The engine's text. The stand-in's is a JSON array, an object for each row.
        """
        result: Any = self.call("RunValueGet", f"{self.name}_{element}", None)
        return result

    def set_cache_value(self, element: str, column: int, value: float | str, *, row: int = 0) -> None:
        """Write a value of an element's cache sets.

        Writes one row of the table of items of a module or node in one cache set.

        column: 1 for cache set 0, 2 for set 1, 3 for set 2.
        value: The number as text, at most 255 bytes. The service writes 0 for a text that is no number.
        row: The row of the table, from 0.
        """
        self.call("VarCacheSet", f"{self.name}_{element}", {"Row": row, "Column": column, "Value": number_text(value)})

    def cache_values(self, element: str) -> Any:
        """Read the cache sets of an element's table.

        The engine's text. The stand-in's is a JSON array, an object for each row with its values in the three sets.
        """
        result: Any = self.call("VarCacheGet", f"{self.name}_{element}", None)
        return result

    def set_value(self, element: str, column: int, value: float | str, *, row: int = 0) -> None:
        """Write a value of an element by the engine's column.

        Writes one row of the table of items of a module or node in the column of the engine: 1 the run value, 2 to
        4 the cache sets 0 to 2. Any other column writes nothing with the stand-in.

        column: The engine's column: 1 run, 2 to 4 the cache sets 0 to 2.
        value: The number as text, at most 255 bytes. The service writes 0 for a text that is no number.
        row: The row of the table, from 0.
        """
        self.call("VarValueSet", f"{self.name}_{element}", {"Row": row, "Column": column, "Value": number_text(value)})

    def save_element(self, element: str, cache_set: Literal[0, 1, 2]) -> None:
        """Copy an element's run values into a cache set.

        Serves modules and nodes.

        cache_set: The cache set.
        """
        self.call("RunToCache", f"{self.name}_{element}", cache_set)

    def load_element(self, element: str, cache_set: Literal[0, 1, 2]) -> None:
        """Copy a cache set into an element's run values.

        Serves modules and nodes.

        cache_set: The cache set.
        """
        self.call("CacheToRun", f"{self.name}_{element}", cache_set)

    def set_important(self, element: str, important: str) -> None:
        """Mark what is important of a module.

        Gives the engine a text on what to watch of the module. The stand-in keeps the text; the empty one takes the
        mark away.

        important: The engine's text.
        """
        self.call("ImportantSet", f"{self.name}_{element}", important)

    def important(self) -> Any:
        """Read what is marked as important in a project.

        The engine's text. The stand-in's is a JSON array, an object for each module with a mark.
        """
        result: Any = self.call("ImportantGet", self.name, None)
        return result

    def picture(self) -> str:
        """Draw a project.

        Has the engine write the project's picture into a file, waits, and gives the file's content as it stands, up
        to its first zero byte. The stand-in draws SVG.
        """
        result: str = self.call("PjtPngGet", self.name, None)
        return result

    def chart(self) -> str:
        """Chart a project's run.

        As the picture. The stand-in charts GTemp over the steps of the run so far, as SVG.
        """
        result: str = self.call("PjtChartGet", self.name, None)
        return result

    def performance(self) -> Any:
        """Tell a project's performance.

        Four lines for people: the efficiency (COP), the energy used (WAll), the temperature of the store (BKT_TEMP
        of module 145) and the evaporating temperature (GTemp). A variable that the project does not have shows its
        failure in its line.
        """
        result: Any = self.call("PjtCerGet", self.name, None)
        return result

    def holds_project(self) -> bool:
        """Ask whether the server holds a project.

        Tells whether a project of this name is open.
        """
        result: bool = self.call("Fdp", self.name, None)
        return result
