# SPDX-License-Identifier: GPL-3.0-or-later
"""What the parts are made of. Colours are given as they appear on the screen (sRGB, #rrggbb)."""
import bpy

GRAPHITE = "#26282b"
CHARCOAL = "#36393d"
KEY_GREY = "#4b4f54"
PETROL = "#2a5965"  # appears as #2E5F6B to #3a7080 under the key light
IVORY = "#F4F1E6"
LEGEND_IVORY = "#E4E3DE"
AMBER = "#F2A43A"
RED = "#E0402C"
GREEN = "#4FC24A"
STEEL = "#b4b6b8"
ALUMINIUM = "#cfd0cf"
BLACK = "#101113"


def linear(colour):
    """#rrggbb to linear light, with an alpha of 1."""
    channels = [int(colour[i:i + 2], 16) / 255.0 for i in (1, 3, 5)]
    return tuple(c / 12.92 if c <= 0.04045 else ((c + 0.055) / 1.055) ** 2.4 for c in channels) + (1.0,)


def solid(name, colour, roughness=0.5, metallic=0.0, specular=0.5, clearcoat=0.0, anisotropic=0.0, grain=0.0, glow=0.0,
          grain_size=55.0):
    """A Principled material. grain is the depth of a fine bump, glow the strength of its own light."""
    material = bpy.data.materials.new(name)
    material.use_nodes = True
    nodes, links = material.node_tree.nodes, material.node_tree.links
    surface = nodes["Principled BSDF"]
    surface.inputs["Base Color"].default_value = linear(colour)
    surface.inputs["Roughness"].default_value = roughness
    surface.inputs["Metallic"].default_value = metallic
    surface.inputs["Specular"].default_value = specular
    surface.inputs["Clearcoat"].default_value = clearcoat
    surface.inputs["Clearcoat Roughness"].default_value = 0.12
    surface.inputs["Emission"].default_value = linear(colour)
    surface.inputs["Emission Strength"].default_value = glow
    if anisotropic:
        surface.inputs["Anisotropic"].default_value = anisotropic
        tangent = nodes.new("ShaderNodeTangent")
        tangent.direction_type, tangent.axis = "RADIAL", "Z"
        links.new(tangent.outputs[0], surface.inputs["Tangent"])
        surface.inputs["Anisotropic Rotation"].default_value = 0.25  # rough across the turning marks, not along them
    if grain:
        place = nodes.new("ShaderNodeTexCoord")
        noise = nodes.new("ShaderNodeTexNoise")
        noise.inputs["Scale"].default_value = grain_size
        noise.inputs["Detail"].default_value = 2.0
        links.new(place.outputs["Object"], noise.inputs["Vector"])
        bump = nodes.new("ShaderNodeBump")
        bump.inputs["Strength"].default_value = grain
        bump.inputs["Distance"].default_value = 0.01
        links.new(noise.outputs["Fac"], bump.inputs["Height"])
        links.new(bump.outputs["Normal"], surface.inputs["Normal"])
    return material


def turned(material, pitch, depth):
    """Adds the concentric marks of a lathe: rings pitch apart round the object's z axis."""
    nodes, links = material.node_tree.nodes, material.node_tree.links
    wave = nodes.new("ShaderNodeTexWave")
    wave.wave_type, wave.rings_direction = "RINGS", "Z"
    wave.inputs["Scale"].default_value = 0.314 / pitch  # a ring texture of scale 1 repeats every 0.314 units
    wave.inputs["Distortion"].default_value = 0.0
    links.new(nodes.new("ShaderNodeTexCoord").outputs["Object"], wave.inputs["Vector"])
    bump = nodes.new("ShaderNodeBump")
    bump.inputs["Strength"].default_value = depth
    bump.inputs["Distance"].default_value = 0.01
    links.new(wave.outputs["Fac"], bump.inputs["Height"])
    links.new(bump.outputs["Normal"], nodes["Principled BSDF"].inputs["Normal"])
    return material


def with_line(material, colour, half_width, start, end, glow, paint=0.55, across="X", softness=0.006):
    """Paints a line on a material, in the object's own units: within half_width of 0 on the axis across, and from start
    to end along the other one.

    The line has its own light, strongest on its axis, so that it is the brightest thing on the part in any position; its
    paint reflects only that share of the colour, lest both together burn out. Only the camera sees the line's own light:
    the surface beside it is as dark as without.
    """
    nodes, links = material.node_tree.nodes, material.node_tree.links
    surface = nodes["Principled BSDF"]

    def math_node(operation, *inputs):
        node = nodes.new("ShaderNodeMath")
        node.operation = operation
        for socket, value in zip(node.inputs, inputs):
            if isinstance(value, (int, float)):
                socket.default_value = value
            else:
                links.new(value, socket)
        return node.outputs[0]

    def step(value, edge, rising):
        node = nodes.new("ShaderNodeMapRange")
        node.interpolation_type = "SMOOTHSTEP"
        links.new(value, node.inputs["Value"])
        node.inputs["From Min"].default_value, node.inputs["From Max"].default_value = edge - softness, edge + softness
        node.inputs["To Min"].default_value, node.inputs["To Max"].default_value = (0, 1) if rising else (1, 0)
        return node.outputs["Result"]

    split = nodes.new("ShaderNodeSeparateXYZ")
    links.new(nodes.new("ShaderNodeTexCoord").outputs["Object"], split.inputs[0])
    aside = math_node("ABSOLUTE", split.outputs[across])
    along = split.outputs["Y" if across == "X" else "X"]
    mask = math_node("MULTIPLY", step(aside, half_width, False), math_node("MULTIPLY", step(along, start, True),
                                                                           step(along, end, False)))
    mix = nodes.new("ShaderNodeMixRGB")
    mix.inputs["Color1"].default_value = surface.inputs["Base Color"].default_value
    mix.inputs["Color2"].default_value = tuple(paint * c for c in linear(colour)[:3]) + (1.0,)
    links.new(mask, mix.inputs["Fac"])
    links.new(mix.outputs[0], surface.inputs["Base Color"])

    surface.inputs["Emission"].default_value = linear(colour)
    ratio = math_node("DIVIDE", aside, half_width)
    peak = math_node("SUBTRACT", 1.0, math_node("MULTIPLY", 0.45, math_node("MULTIPLY", ratio, ratio)))
    seen = math_node("MULTIPLY", glow, nodes.new("ShaderNodeLightPath").outputs["Is Camera Ray"])
    links.new(math_node("MULTIPLY", math_node("MULTIPLY", mask, peak), seen), surface.inputs["Emission Strength"])

    metallic = surface.inputs["Metallic"]
    links.new(math_node("MULTIPLY", math_node("SUBTRACT", 1.0, mask), metallic.default_value), metallic)
    return material
