"""Programs with mistakes, which mypy finds: forty lines, each marked."""

import karmp

m = karmp.Model("Mistakes", gravity=(0, -9.81, 0))
body = m.add_body("Body", mass=1.0)
joint = m.add_joint(karmp.Revolute, "Joint", m.ground, body, (0, 0, 0))
variable = m.variable("Angle", joint)
motor = m.add(karmp.Motor, "Motor")
frame = m.add(karmp.AxisSystem, "Frame")

# Words.
motor.target_type = "SpeedTarget"  # mistake
motor.target_type = "positiontarget"  # mistake
variable.type = "Fixed"  # mistake
variable.physical_quantity = "Metres"  # mistake
motor.target_type = 2  # mistake
if variable.type == "Frei":  # mistake
    pass

# Types of values.
body.mass = "heavy"  # mistake
body.mass = None  # mistake
body.name = 5  # mistake
body.is_active = "yes"  # mistake
body.cog = 1.0  # mistake
body.cog = "centre"  # mistake
body.inertia_matrix = [1.0, 2.0, 3.0]  # mistake
body.inertia_matrix = [["a", "b", "c"]]  # mistake
variable.value = "half"  # mistake
m.gravity = -9.81  # mistake
m.linear_tolerance = "fine"  # mistake

# Names.
body.mas = 1.0  # mistake
print(body.weight)  # mistake
print(joint.body)  # mistake
print(m.body)  # mistake
m.add_body("Other", masss=1.0)  # mistake
m.add_body("Other", center=(0, 0, 0))  # mistake
print(karmp.Revolut)  # mistake
m.addBody("Other")  # mistake
print(frame.radius)  # mistake

# References.
motor.variable = body  # mistake
joint.bodies.append(variable)  # mistake
joint.bodies = [joint]  # mistake
joint.bodies = body  # mistake
print(motor.variable.value)  # mistake
print(m.find("Body").name)  # mistake

# What cannot be set.
body.id = "Another"  # mistake
m.ground = body  # mistake
m.findings[0].line = 3  # mistake

# Arguments.
karmp.load(5)  # mistake
m.add("Body", "Other")  # mistake
m.all("Body")  # mistake
m.diff("other.xml")  # mistake
mass: str = m.bodies["Body"].mass  # mistake
