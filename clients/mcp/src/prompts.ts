// Prompts for three jobs: build a plant, judge it, explain what it does.

import type { Prompt } from "@modelcontextprotocol/sdk/types.js";

interface Job {
    readonly listed: Prompt;
    readonly text: (args: Readonly<Record<string, string>>) => string;
}

const project = { name: "project", description: "The project's name: letters and digits.", required: true };

const jobs: readonly Job[] = [
    {
        listed: {
            name: "build_plant", title: "Build a plant and run it", description: "Makes a plant from a wish, gives it what it needs to work, and runs it.",
            arguments: [project, { name: "wish", description: "What the plant is to do.", required: false }],
        },
        text: ({ project: name = "PLANT1", wish = "cool three offices with chilled water" }) => `Build the project ${name}: ${wish}.

1. Read vorn://docs/plant.md (what each type needs to work) and vorn://examples/chilled_water_plant.json or vorn://examples/cold_store.json, whichever is
   closer. For pipes of another size or for refrigerant read vorn://docs/fittings.md, for other types call module_types.
2. Call make_plant once with the example's name or with a document of your own, and with startValues. Items begin at 0, except Opening 1, Head 20 and
   Power 1, so each heat exchanger needs an Area in m2, each compressor, cooling tower and fan coil its Power in kW, and each room its
   InsideTemperature and OutsideTemperature. For the chilled-water example these make it cool:
   {"pump": {"Head": 18, "Power": 1.5}, "compressor": {"Power": 5}, "evaporator": {"Area": 15}, "condenser": {"Area": 20}, "cooling tower": {"Power": 60},
    "fan coil": {"Power": 8}, "room": {"InsideTemperature": 30, "OutsideTemperature": 34}}
3. Where make_plant says complete: false, mend what todo says in the document and call it again.
4. Call run, then write_variables with 1 to ${name}_GStepSeconds and 60 to ${name}_GRate, so that a minute passes in a second: rooms change slowly.
   Then call watch_variables with ${name}_GTemp and the rooms' InsideTemperature (their names: element_values), then explain_values.
   Mend what findings name with write_variables (now) and startValues (the next time).
5. Call stop. Tell the user what was built, what it reached, and what was assumed.`,
    },
    {
        listed: {
            name: "judge_plant", title: "Judge a plant", description: "Tells whether a plant is complete and can work.", arguments: [project],
        },
        text: ({ project: name = "PLANT1" }) => `Judge the project ${name}.

1. Call status with the project; where it is not open, open_project.
2. Call check_plant. Where it is not complete, name the element, the branch and what to do, in the user's words.
3. Call plant_summary, and explain_values: what is complete can still not work, such as with an Area of 0 or without a heat sink.
4. Change nothing. List the faults, the worst first, with the change that would mend each.`,
    },
    {
        listed: {
            name: "explain_plant", title: "Explain what a plant does", description: "Answers a question such as why a room is warm.",
            arguments: [project, { name: "question", description: "What the user asks.", required: false }],
        },
        text: ({ project: name = "PLANT1", question = "Why is it warm?" }) => `Answer for the project ${name}: ${question}

1. Call explain_values. Its findings come from the values of this moment; vorn://docs/plant.md has the rules.
2. Where they do not answer it, call plant_summary for the net of the element, and watch_variables for its course.
3. Answer with the cause first, the values that show it, and the change that would help. Change nothing unless the user asks.`,
    },
];

export const listedPrompts = (): Prompt[] => jobs.map(({ listed }) => listed);

/** The text of a prompt. Throws Error for one that is not there, and without an argument that it needs. */
export function promptText(name: string, args: Readonly<Record<string, string>>): string {
    const job = jobs.find(({ listed }) => listed.name === name);
    if (!job) throw new Error(`there is no prompt ${name}`);
    const missing = job.listed.arguments?.find((each) => each.required && !args[each.name]);
    if (missing) throw new Error(`the prompt ${name} needs ${missing.name}`);
    return job.text(args);
}
